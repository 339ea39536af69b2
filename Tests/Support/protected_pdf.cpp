#include "Tests/Support/protected_pdf.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Tests/Support/road.h"

namespace tessel_test {

namespace {

/// A directory of its own that goes at the end.
class Workplace {
 public:
  Workplace() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tessel_protected_XXXXXX").string();
    directory = mkdtemp(pattern.data());
  }
  ~Workplace() { std::filesystem::remove_all(directory); }
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  std::string path(const char* name) const { return (directory / name).string(); }
  void put(const char* name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }
  std::string get(const char* name) const {
    std::ifstream in(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  /// Runs qpdf from "in" to "out". Warnings are no failure.
  bool qpdf(const std::string& options) const {
    const std::string line = "qpdf --no-warn " + options + ' ' + quoted(path("in")) + ' ' +
                             quoted(path("out")) + " 2>" + quoted(path("log"));
    constexpr int onlyWarnings = 3;
    const int status = std::system(line.c_str());
    return status == 0 || (WIFEXITED(status) && WEXITSTATUS(status) == onlyWarnings);
  }

 private:
  std::filesystem::path directory;
};

}  // namespace

std::string protectedPdf(const std::string& plain, const Protection& protection, const Passwords& passwords,
                         Layout layout, const std::string& options) {
  const Workplace place;
  place.put("in", plain);
  const bool insecure = protection.revision >= 5 && passwords.owner.empty() && !passwords.user.empty();
  const std::string line = "--allow-weak-crypto --stream-data=preserve --object-streams=" +
                           std::string(layout == Layout::objectStreams ? "generate" : "disable") +
                           " --encrypt " + quoted(passwords.user) + ' ' + quoted(passwords.owner) + ' ' +
                           std::string(protection.method) + (insecure ? " --allow-insecure " : " ") +
                           options + " --";
  if (!place.qpdf(line)) {
    ADD_FAILURE() << "qpdf " << line << ": " << place.get("log");
    return {};
  }
  return place.get("out");
}

std::string decryptedByQpdf(const std::string& encrypted, const std::string& password) {
  const Workplace place;
  place.put("in", encrypted);
  return place.qpdf("--decrypt --stream-data=preserve --password=" + quoted(password)) ? place.get("out")
                                                                                       : std::string();
}

}  // namespace tessel_test
