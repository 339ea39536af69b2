#pragma once

#include <string>
#include <string_view>

namespace TesselHost {

/// Writes one JSON value (RFC 8259) into a string; commas come by themselves.
///
/// Calls must nest as the value does; nothing checks that.
class JsonWriter {
 public:
  JsonWriter& beginObject() { return open('{'); }
  JsonWriter& endObject() { return close('}'); }
  JsonWriter& beginArray() { return open('['); }
  JsonWriter& endArray() { return close(']'); }
  /// The name of the next value of an object.
  JsonWriter& key(std::string_view name);
  JsonWriter& value(long long number);
  JsonWriter& value(int number) { return value(static_cast<long long>(number)); }
  /// Nine significant digits, as "%.9g" has them; null when the number isn't finite.
  JsonWriter& value(float number);
  JsonWriter& value(bool truth) { return raw(truth ? "true" : "false"); }
  /// A text; bytes that aren't UTF-8 become U+FFFD.
  JsonWriter& value(std::string_view text);
  JsonWriter& value(const char* text) { return value(std::string_view(text)); }
  /// The bytes as a string in base64 (RFC 4648, 4).
  JsonWriter& base64(std::string_view bytes);
  JsonWriter& null() { return raw("null"); }

  const std::string& text() const { return out; }
  /// Forgets what was written; the memory is kept for the next value.
  void clear() { out.clear(), needsComma = false; }

 private:
  JsonWriter& open(char bracket);
  JsonWriter& close(char bracket);
  JsonWriter& raw(std::string_view text);
  void separate();

  std::string out;
  bool needsComma = false;
};

}  // namespace TesselHost
