#pragma once

#include <string>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// An action (ISO 32000-2, 12.6) with all that follow it by /Next: records the destinations of those that go
/// to a place of this document.
class CAction : public CObj {
 public:
  enum ActionType : int { goTo = 0, other = 8 };

  /// A dictionary, or what follows its "<<" when the reader was entered by the table. For each action of the
  /// chain that is a /GoTo or /GoToDp the destination is entered under the key object, where an earlier one
  /// stays, and the object among those with an action. An action is read once, so a chain that closes ends
  /// there.
  /// @return false when the stream failed
  bool Read(CSourFile& source) override;
  void getActionType(const std::string& name);

  int type = other;
  SObj key;  ///< set before reading: the identity under which the destination is entered
};

}  // namespace TESSEL
