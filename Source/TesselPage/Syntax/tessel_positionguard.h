#pragma once

#include <istream>

namespace TESSEL {

/// Restores a stream's position at the end of the scope. All readers of a source share one position, so a
/// reader that looks elsewhere holds one of these.
class PositionGuard {
 public:
  enum class State { keep, clear };

  /// @param state  clear: the stream's state is cleared before it is sought back
  explicit PositionGuard(std::istream& in, State onExit = State::keep)
      : stream(in), position(in.tellg()), exitState(onExit) {}
  ~PositionGuard() { restore(); }
  PositionGuard(const PositionGuard&) = delete;
  PositionGuard& operator=(const PositionGuard&) = delete;

  /// The stream stays where it stands.
  void dismiss() { active = false; }
  /// Seeks back now; the guard is done.
  void restore() {
    if (!active) return;
    active = false;
    if (exitState == State::clear) stream.clear();
    stream.seekg(position);
  }
  std::streampos where() const { return position; }

 private:
  std::istream& stream;
  std::streampos position;
  State exitState;
  bool active = true;
};

}  // namespace TESSEL
