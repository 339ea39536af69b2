#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

/// Gives a reader another identity for a while: the decryption of strings is keyed by the object being read.
class IdentityGuard {
 public:
  explicit IdentityGuard(CObj& reader) : object(reader), own(reader.id) {}
  ~IdentityGuard() { object.id = own; }
  IdentityGuard(const IdentityGuard&) = delete;
  IdentityGuard& operator=(const IdentityGuard&) = delete;

 private:
  CObj& object;
  SObj own;
};

/// A token that ends the dictionary of an object: "endobj" or "stream". Tokens come as views here and below:
/// those are compared by their sizes first.
bool endsObject(std::string_view token);

/// Which strings a scan over an object steps over; the bytes of any other are taken for tokens.
enum class StringsSkipped { none, literalOnly, both };

/// Skips the string that `token` opens. False when it opens none.
bool skipIfString(CSourFile& source, const SObj& owner, std::string_view token, StringsSkipped which);

/// Depth of dictionaries: moves with "<<" and ">>" and stays with any other token.
class DictDepth {
 public:
  explicit DictDepth(int start = 0) : level(start) {}
  /// Takes a token; true when it is the ">>" that brings the depth back to 0. One that closes nothing isn't.
  bool closes(std::string_view token);
  int depth() const { return level; }

 private:
  int level;
};

/// Bracket scan: calls `each(token)` for every token until the ">>" that closes the dictionary at hand, with
/// `depth` of them open already, or until "stream", "endobj" or a bad stream state.
/// @return whether the ">>" was met
template <class Each>
bool scanDictionary(CSourFile& source, int depth, Each each) {
  DictDepth open(depth);
  std::string token;
  while (source.good()) {
    source >> token;
    if (endsObject(token)) return false;
    if (open.closes(token)) return true;
    each(token, open.depth());
  }
  return false;
}

/// Opens the object behind `ref` to read a value, through a chain of references.
/// @param[out] memory  holds the memory source that the result may be
/// @return the source that stands at the value, or null when a link leads nowhere or the chain closes
CSourFile* openValue(CSourFile& source, std::unique_ptr<CSourFile>& memory, SObj ref);

/// What the harvest loop does with an entry of the work list that is free or missing: those with one of these
/// flags are dropped, any other ends the loop.
enum class MissingObjects : int { endTheLoop = 0, dropAnnotations = ObjFlag::annotLike };

/// Whether the cross-reference data has no place for the object.
bool isMissing(CSourFile& main, const SObj& object);

/// The harvest loop: takes the entries of `work` one by one, breadth first, and calls `visit(body)` with the
/// source that stands at the object, in the file or in memory; `reader` has the entry as its identity
/// meanwhile. What a visit pushes on the back of `work` is visited too. `drop(entry)` is called for each one
/// that is dropped, before it leaves the list. The stream's position is not kept.
/// @return true when `work` has run empty; false when an object could not be placed or a visit failed: the
/// rest of `work`
///         then stays unvisited, and the stream's state is clear
template <class Visit, class Drop>
bool harvest(CObj& reader, CSourFile& main, std::list<SObj>& work, MissingObjects rule, Visit visit,
             Drop drop) {
  IdentityGuard own(reader);
  while (!work.empty()) {
    reader.id = work.front();
    if (reader.id.hasAny(static_cast<int>(rule)) && isMissing(main, reader.id)) {
      drop(reader.id);
      work.pop_front();
      continue;
    }
    // An object that ran into the end of the file must not take the next one with it.
    main.clear();
    std::unique_ptr<CSourFile> memory;
    CSourFile* body = CObj::ParseObj(main, memory, reader.id);
    if (!body || !visit(*body)) {
      main.clear();
      return false;
    }
    if (!work.empty()) work.pop_front();
  }
  return true;
}

/// The same, where nobody asks what is dropped.
template <class Visit>
bool harvest(CObj& reader, CSourFile& main, std::list<SObj>& work, MissingObjects rule, Visit visit) {
  return harvest(reader, main, work, rule, visit, [](const SObj&) {});
}

/// Scans one object from the stream's place up to "endobj" or "stream" and calls `take(ref)` for each
/// reference; strings of `owner` are skipped.
template <class Take>
void forEachReference(CSourFile& source, const SObj& owner, StringsSkipped strings, Take take) {
  std::string token;
  SObj ref;
  while (source.good()) {
    if (tryReference(source, ref)) {
      take(ref);
      continue;
    }
    source >> token;
    if (endsObject(token)) return;
    skipIfString(source, owner, token, strings);
  }
}

/// The plain harvest of one object: each reference that isn't among the page objects of `main` enters them
/// and `work`. Always true.
bool harvestObject(CSourFile& main, CSourFile& source, const SObj& owner, std::list<SObj>& work);

/// The plain harvest over a work list.
bool harvestAll(CObj& reader, CSourFile& main, std::list<SObj>& work);

}  // namespace TESSEL
