#include "TesselPage/Finder/yard_pairs.h"

#include <algorithm>

namespace yard {

PairScan::Run PairScan::makeRun(const char* begin, const char* stop, char c) const {
  const bool opens = c == shape.open;
  const std::ptrdiff_t count = (stop - begin) / shape.width;
  // Openings count from the end of a run: whatever byte a match begins at, what is behind it is the same.
  return {begin, opens ? stop - count * shape.width : begin, stop, count, opens};
}

bool PairScan::nextRun(const char* from, Run& run) const {
  for (const char* p = from; p < end;) {
    if (!isDelimiter(*p) || isEscaped(p)) {
      ++p;
      continue;
    }
    const char* const begin = p;
    while (p < end && *p == *begin) ++p;
    run = makeRun(begin, p, *begin);
    if (run.count > 0) return true;
  }
  return false;
}

bool PairScan::previousRun(const char* from, const char* limit, Run& run) const {
  for (const char* p = from; p > limit;) {
    const char c = p[-1];
    if (!isDelimiter(c)) {
      --p;
      continue;
    }
    const char* const stop = p;
    while (p > limit && p[-1] == c) --p;
    run = makeRun(isEscaped(p) ? p + 1 : p, stop, c);
    if (run.count > 0) return true;
  }
  return false;
}

/// Where `depth` openings before `from` are all closed, by counting; null when the text ends before.
const char* PairScan::balancedEnd(const char* from, std::ptrdiff_t depth) const {
  for (Run run; nextRun(from, run); from = run.stop) {
    if (!run.opens && run.count >= depth) return delimiter(run, depth);
    depth += run.opens ? run.count : -run.count;
  }
  return nullptr;
}

/// The pass from the end of the text that settles the unclosed openings.
///
/// It meets them from right to left; each is looked at by what the rule does there. What is behind the
/// opening ends in balanced pairs and then the unclosed opening to the right, its neighbour, which is taken
/// as an item:
/// - the neighbour makes no pair, or no delimiter is left behind its pair: the item fails, and the first
/// closing
///   behind the neighbour's opening ends the pair ("restart");
/// - else the rule goes on behind the neighbour's pair: to the closing of the balanced pair that this end
/// lies
///   in ("climb"), or, at top level, over balanced pairs to the next unclosed opening, where it does what it
///   did for the unclosed opening before that place.
/// So ends repeat the ends of openings settled before; `followed` is the one that this opening repeats, and
/// the next opening then repeats the one after that. Each climb and each restart looks at a stretch of text
/// once.
class PairScan::Unwinding {
 public:
  explicit Unwinding(PairScan& pairScan) : scan(pairScan), found(pairScan.unclosed) {}

  void run(const char* origin) {
    found.clear();
    Run runOfText;
    for (const char* p = scan.end; scan.previousRun(p, origin, runOfText); p = runOfText.begin) {
      if (!lastDelimiter) lastDelimiter = scan.delimiter(runOfText, runOfText.count - 1);
      if (runOfText.opens) {
        takeOpenings(runOfText);
      } else {
        depth += runOfText.count;
        firstClosing = runOfText.first;
        closingSeen = true;
      }
    }
  }

 private:
  static constexpr std::ptrdiff_t none = -1;

  void takeOpenings(const Run& run) {
    const std::ptrdiff_t balanced = std::min(depth, run.count);
    depth -= balanced;
    if (balanced > 0 && depth == 0 && found.empty() && !lastPairClosing) lastPairClosing = firstClosing;
    for (std::ptrdiff_t i = run.count - balanced; i-- > 0;) settle(scan.delimiter(run, i));
  }

  void settle(const char* opening) {
    const Ending ending = found.empty() ? restart(lastPairClosing) : endingBehind(found.back().ending);
    found.push({opening, ending});
    if (closingSeen || found.size() == 1) {
      nearestClosing = firstClosing;
      nearestOwner = found.size() - 1;
    }
    closingSeen = false;
  }

  Ending endingBehind(const Ending& neighbour) {
    if (!neighbour.place || neighbour.place > lastDelimiter) return restart(nearestClosing);
    return followed == none ? climb(neighbour.place) : follow(followed + 1);
  }

  Ending restart(const char* closing) {
    followed = none;
    if (!closing) return {nullptr, false, false};
    if (closing == restartClosing) return follow(restartIndex);
    restartClosing = closing;
    restartIndex = static_cast<std::ptrdiff_t>(found.size());
    climbOwner = nearestOwner;
    return fresh(closing + scan.shape.width);
  }

  Ending climb(const char* from) {
    const char* const limit = climbOwner == 0 ? nullptr : found[climbOwner - 1].opening;
    std::ptrdiff_t inner = 0;
    for (Run run; nextRun(from, run); from = run.stop) {
      if (run.first == limit) break;
      if (!run.opens && run.count > inner) return fresh(scan.delimiter(run, inner + 1));
      inner += run.opens ? run.count : -run.count;
    }
    return follow(static_cast<std::ptrdiff_t>(climbOwner));
  }

  /// As the scan's own, but a run is measured once, from however many places in it one climbs.
  bool nextRun(const char* from, Run& run) {
    if (from >= climbed.begin && from < climbed.stop) {
      run = scan.makeRun(from, climbed.stop, *from);
      if (run.count > 0) return true;
      from = climbed.stop;
    }
    if (!scan.nextRun(from, run)) return false;
    climbed = run;
    return true;
  }

  Ending follow(std::ptrdiff_t index) {
    followed = index;
    return found[static_cast<std::size_t>(index)].ending;
  }

  Ending fresh(const char* place) { return {place, scan.isKept(place), false}; }

  PairScan& scan;
  ShortStack<Unclosed, withoutHeap>& found;
  std::ptrdiff_t depth = 0;             ///< closings to the right that wait for an opening
  const char* lastDelimiter = nullptr;  ///< of the text
  const char* firstClosing = nullptr;   ///< leftmost closing seen so far
  const char* lastPairClosing =
      nullptr;               ///< first closing in the last balanced pair behind all unclosed openings
  bool closingSeen = false;  ///< since the last unclosed opening
  const char* nearestClosing = nullptr;  ///< first closing behind the last unclosed opening settled
  std::size_t nearestOwner = 0;          ///< the last unclosed opening before that closing
  const char* restartClosing = nullptr;
  std::ptrdiff_t restartIndex = none;
  std::size_t climbOwner = 0;
  Run climbed{};  ///< the run that was measured last
  std::ptrdiff_t followed = none;
};

const PairScan::Unclosed* PairScan::unclosedAt(const char* opening) {
  if (unclosed.empty()) return nullptr;
  while (cursor + 1 < unclosed.size() && unclosed[cursor].opening > opening) ++cursor;
  while (cursor > 0 && unclosed[cursor].opening < opening) --cursor;
  return unclosed[cursor].opening == opening ? &unclosed[cursor] : nullptr;
}

const char* PairScan::countedEnd(const char* opening, const char* runStop, std::ptrdiff_t depth) {
  if (counted.end && opening >= counted.opening && opening < counted.end) return endInside(opening);
  const char* const place = balancedEnd(runStop, depth);
  if (place) {
    counted = {opening, place};
    inside.clear();
  }
  return place;
}

/// Counting from each of them would look at a stretch of text once for each level.
const char* PairScan::endInside(const char* opening) {
  if (opening == counted.opening) return counted.end;
  if (inside.empty()) {
    forPairsInside(counted.opening, counted.end, [this](const Run& run, std::ptrdiff_t i, const char* stop) {
      inside.push({delimiter(run, i), stop});
    });
    std::sort(inside.begin(), inside.end(),
              [](const Balanced& a, const Balanced& b) { return a.opening < b.opening; });
    insideCursor = 0;
  }
  while (insideCursor + 1 < inside.size() && inside[insideCursor].opening < opening) ++insideCursor;
  while (insideCursor > 0 && inside[insideCursor].opening > opening) --insideCursor;
  return inside[insideCursor].end;
}

PairScan::Ending PairScan::resolve(const char* runStop, std::ptrdiff_t behind) {
  const char* const opening = runStop - behind * shape.width;
  if (const Unclosed* known = unclosedAt(opening)) return known->ending;
  if (const char* place = countedEnd(opening, runStop, behind)) return {place, isKept(place), true};
  Unwinding(*this).run(opening);
  cursor = unclosed.size() - 1;
  return unclosed.back().ending;
}

const char* PairScan::endOf(const char* opening) {
  if (!lastStop || opening < lastFrom || opening >= lastStop) {
    lastFrom = opening;
    lastStop = opening;
    while (lastStop < end && *lastStop == shape.open) ++lastStop;
  }
  return resolve(lastStop, (lastStop - opening) / shape.width).place;
}

bool PairSearch::leftmost(const char* from, const char*& begin, const char*& end) {
  Pair found{};
  bool any = leftmostInside(from, found);
  if (!any && insideStop && from < insideStop) from = insideStop;
  for (PairScan::Run run; !any && scan.nextRun(from, run);) {
    insideStop = run.stop;
    any = run.opens && leftmostOfRun(run, found);
    from = insideStop;
  }
  if (!any) return false;
  begin = found.begin;
  end = found.end;
  return true;
}

/// Looks at the openings of a run and at what is inside them; `insideStop` says from where it has not looked.
bool PairSearch::leftmostOfRun(const PairScan::Run& run, Pair& found) {
  for (std::ptrdiff_t i = 0; i < run.count; ++i) {
    const PairScan::Ending ending = scan.resolve(run.stop, run.count - i);
    if (ending.kept) {
      found = {scan.beginOf(run, i), scan.delimiter(run, i), ending.place};
      return true;
    }
    if (!ending.balanced) continue;
    gatherInside(scan.delimiter(run, i) + 1, ending.place);
    return leftmostInside(run.begin, found);
  }
  return false;
}

bool PairSearch::leftmostInside(const char* from, Pair& found) {
  while (insideTaken < inside.size()) {
    const Pair& pair = inside[insideTaken++];
    if (pair.opening < from) continue;
    found = {std::max(pair.begin, from), pair.opening, pair.end};
    return true;
  }
  return false;
}

void PairSearch::gatherInside(const char* from, const char* stop) {
  inside.clear();
  insideTaken = 0;
  insideStop = stop;
  scan.forPairsInside(from, stop, [this](const PairScan::Run& run, std::ptrdiff_t i, const char* end) {
    if (scan.isKept(end)) inside.push({scan.beginOf(run, i), scan.delimiter(run, i), end});
  });
  std::sort(inside.begin(), inside.end(), [](const Pair& a, const Pair& b) { return a.opening < b.opening; });
}

}  // namespace yard
