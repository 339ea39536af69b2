#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

/// The one loop behind the readers of the document: a flat scan over tokens that acts on the keys of a table.
///
/// A reader has a `Scan` class that holds what one read needs and a small handler a key:
///
///   Turn onToken(const std::string& token);   looks the token up (dispatch) or does what its class does
///   instead Turn onReference(const SObj& ref);        only in classes that try a reference before each token
///
/// The scan ends when a handler says so, or when the stream's state is no longer good, which counts as
/// success: what was read until then stays.
enum class Turn { goOn, success, failure };

/// One key of a scan's table.
template <class Scan>
struct KeyRow {
  std::string_view key;
  Turn (Scan::*handle)();
};

/// Whether both are the same. Most tokens begin with the "/" that most keys begin with, and many are as long:
/// the last byte tells them apart.
inline bool isKey(std::string_view key, std::string_view token) {
  return key.size() == token.size() && key.back() == token.back() && key == token;
}

/// Calls the handler of `token`. True when the table has one; `turn` is then its answer.
template <class Scan, std::size_t n>
bool dispatch(Scan& scan, const KeyRow<Scan> (&rows)[n], std::string_view token, Turn& turn) {
  for (const KeyRow<Scan>& row : rows) {
    if (!isKey(row.key, token)) continue;
    turn = (scan.*row.handle)();
    return true;
  }
  return false;
}

/// The same, where any other token is passed over.
template <class Scan, std::size_t n>
Turn dispatch(Scan& scan, const KeyRow<Scan> (&rows)[n], std::string_view token) {
  Turn turn = Turn::goOn;
  dispatch(scan, rows, token, turn);
  return turn;
}

/// A scan that takes references apart from tokens.
template <class Scan>
concept TakesReferences = requires(Scan scan, const SObj& ref) {
  scan.onReference(ref);
};

/// A scan that ends at a place, looked at before each turn.
template <class Scan>
concept EndsAtPlace = requires(Scan scan) {
  scan.atEnd();
};

template <class Scan>
Turn scanTurn(CSourFile& source, Scan& scan, std::string& token) {
  if constexpr (EndsAtPlace<Scan>) {
    if (scan.atEnd()) return Turn::success;
  }
  if constexpr (TakesReferences<Scan>) {
    SObj ref;
    if (tryReference(source, ref)) return scan.onReference(ref);
  }
  source >> token;
  return scan.onToken(token);
}

/// Runs a scan from the stream's present place.
/// @return false when a handler failed
template <class Scan>
bool scanKeys(CSourFile& source, Scan& scan) {
  std::string token;
  Turn turn = Turn::goOn;
  while (turn == Turn::goOn && source.good()) turn = scanTurn(source, scan, token);
  return turn != Turn::failure;
}

}  // namespace TESSEL
