#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace TESSEL {

/// A text that hardly anyone of very many has: an empty one takes a pointer's room.
class RareString {
 public:
  RareString() = default;
  RareString(std::string value)
      : text(value.empty() ? nullptr : std::make_unique<std::string>(std::move(value))) {}
  RareString(const RareString& other)
      : text(other.empty() ? nullptr : std::make_unique<std::string>(*other.text)) {}
  RareString(RareString&&) noexcept = default;
  RareString& operator=(RareString other) noexcept {
    text = std::move(other.text);
    return *this;
  }
  ~RareString() = default;

  bool empty() const { return !text; }
  operator std::string() const { return text ? *text : std::string(); }
  friend bool operator==(const RareString& a, std::string_view b) {
    return a.empty() ? b.empty() : *a.text == b;
  }

 private:
  std::unique_ptr<std::string> text;
};

}  // namespace TESSEL
