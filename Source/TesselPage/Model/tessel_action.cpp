#include "TesselPage/Model/tessel_action.h"

#include <memory>
#include <set>
#include <vector>

#include "TesselPage/Model/tessel_dest.h"
#include "TesselPage/Model/tessel_dpart.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_objectend.h"
#include "TesselPage/Model/tessel_stepover.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

/// Reads one action object. A direct dictionary behind /Next is an action of its own at the same identity: it
/// is read on the way, each with a level of its own, so that no byte is read twice.
class ActionScan {
 public:
  ActionScan(CAction& reader, CSourFile& in) : action(reader), source(in), end(in, reader.id) {
    const bool entered = (reader.typeFlags & CObj::foundByTable) != 0 && !in.isSubSource;
    if (entered) open();
  }

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj&) { return Turn::goOn; }
  Turn onToken(const std::string& token);
  /// Enters the destinations of all actions, in the order of their beginnings.
  void record() const;

  std::vector<SObj> next;  ///< actions behind references

 private:
  struct Step {
    int type = CAction::other;
    SDestInfo dest;
    bool structureSeen = false;
  };
  struct Level {
    std::size_t step;
    int depth;  ///< of dictionaries within it
  };

  void open();
  Turn close();
  Turn onKey(const std::string& token);
  Turn readNext();
  Turn readD();
  Turn readSD();
  Turn readDp();
  Turn readS();
  void readDest();
  Step& step() { return steps[levels.back().step]; }

  CAction& action;
  CSourFile& source;
  ObjectEnd end;
  std::vector<Step> steps;
  std::vector<Level> levels;
  bool actionNext = true;  ///< the "<<" to come opens an action
};

Turn ActionScan::onToken(const std::string& token) {
  if (token == kwendobj || token.empty()) return Turn::success;
  const bool opensAction = actionNext;
  actionNext = opensAction && token == "[";
  if (token == "<<") {
    if (opensAction)
      open();
    else if (!levels.empty())
      ++levels.back().depth;
    return Turn::goOn;
  }
  if (levels.empty()) {
    actionNext = opensAction;
    return Turn::goOn;
  }
  if (token == ">>") return close();
  if (skipIfString(source, action.id, token, StringsSkipped::both)) return Turn::goOn;
  return levels.back().depth == 0 ? onKey(token) : Turn::goOn;
}

void ActionScan::open() {
  levels.push_back({steps.size(), 0});
  steps.emplace_back();
  actionNext = false;
}

Turn ActionScan::close() {
  if (levels.back().depth-- > 0) return Turn::goOn;
  levels.pop_back();
  return levels.empty() ? Turn::success : Turn::goOn;
}

Turn ActionScan::onKey(const std::string& token) {
  static constexpr KeyRow<ActionScan> rows[] = {{nmNext, &ActionScan::readNext},
                                                {nmD, &ActionScan::readD},
                                                {nmSD, &ActionScan::readSD},
                                                {nmDp, &ActionScan::readDp},
                                                {nmS, &ActionScan::readS}};
  return dispatch(*this, rows, token);
}

Turn ActionScan::readNext() {
  SObj ref;
  if (tryReference(source, ref))
    next.push_back(ref);
  else
    actionNext = true;
  return Turn::goOn;
}

Turn ActionScan::readD() {
  if (!step().structureSeen) readDest();
  return Turn::goOn;
}

// The structure destination wins, whichever comes first.
Turn ActionScan::readSD() {
  readDest();
  step().structureSeen = true;
  return Turn::goOn;
}

void ActionScan::readDest() {
  CDest dest;
  dest.readValue(source, action.id);
  step().dest = dest.info();
  stepOverValue(source, action.id);
}

Turn ActionScan::readDp() {
  SObj part;
  step().dest.style = CDest::fit;
  if (!tryReference(source, part)) return Turn::goOn;
  CSourFile& main = source.mainSource();
  if (const SObj* const page = documentPartPage(main, part)) step().dest.page = pageNumber(main, *page);
  return Turn::goOn;
}

Turn ActionScan::readS() {
  std::string name;
  source >> name;
  action.getActionType(name);
  step().type = action.type;
  return Turn::goOn;
}

void ActionScan::record() const {
  CSourFile& main = source.mainSource();
  for (const Step& each : steps) {
    if (each.type != CAction::goTo) continue;
    main.destObjMap.emplace(SDestObjKey{action.key, 0}, each.dest);
    main.actionObjs.insert(action.id.identity());
  }
}

/// Reads the action that stands here.
bool readOne(CAction& action, CSourFile& source, std::vector<SObj>& waiting) {
  ActionScan scan(action, source);
  scanKeys(source, scan);
  if (!source.good()) return false;
  scan.record();
  waiting.insert(waiting.end(), scan.next.rbegin(), scan.next.rend());
  return true;
}

}  // namespace

bool CAction::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  std::set<SObj> read{id};
  std::vector<SObj> waiting;
  if (!readOne(*this, source, waiting)) return false;
  PositionGuard back(source);
  while (!waiting.empty()) {
    CAction following;
    following.id = following.key = waiting.back();
    waiting.pop_back();
    if (!read.insert(following.id).second) continue;
    std::unique_ptr<CSourFile> memory;
    main.clear();
    CSourFile* const body = ParseObj(main, memory, following.id);
    // One that isn't there is passed over: the rest of the page doesn't hang on it.
    if (body && !readOne(following, *body, waiting)) return false;
  }
  return true;
}

void CAction::getActionType(const std::string& name) {
  type = name == nmGoTo || name == nmGoToDp ? goTo : other;
}

}  // namespace TESSEL
