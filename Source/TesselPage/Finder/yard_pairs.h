#pragma once

#include <cstddef>
#include <vector>

namespace yard {

/// A stack that keeps up to `inside` elements in itself and takes heap only when it grows beyond.
template <class T, std::size_t inside>
class ShortStack {
 public:
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  T* begin() { return spilled ? more.data() : own; }
  T* end() { return begin() + count; }
  T& operator[](std::size_t i) { return begin()[i]; }
  T& back() { return begin()[count - 1]; }
  void push(const T& value) {
    if (!spilled && count == inside) {
      more.assign(own, own + count);
      spilled = true;
    }
    if (spilled) {
      more.push_back(value);
    } else {
      own[count] = value;
    }
    ++count;
  }
  void pop() {
    if (spilled) more.pop_back();
    --count;
  }
  void clear() {
    more.clear();
    spilled = false;
    count = 0;
  }

 private:
  T own[inside];
  std::vector<T> more;  ///< all elements, once they have spilled
  bool spilled = false;
  std::size_t count = 0;
};

/// How a pair is written: each delimiter is `width` equal bytes.
struct PairShape {
  char open;
  char close;
  int width;
  bool escapable;  ///< a delimiter with a backslash right before it is none
};

/// A test of what stands behind a pair. Without one every pair passes.
struct PairTail {
  bool (*accepts)(void* self, const char* from) = nullptr;
  void* self = nullptr;
};

/// Answers where pairs end, for many starts in one text, in time linear in the text.
///
/// A pair whose opening is balanced by counting ends at the closing that balances it. An opening that the
/// text leaves unclosed may still end somewhere inside, by the fall-back of `re_NestRule`; its end follows
/// from the end of the next unclosed opening to its right. So the first unclosed opening that is asked for
/// makes one pass from the end of the text, which settles all unclosed openings behind it; the rest is
/// counting. Pairs inside a pair that was counted before are gathered in one pass when the first of them is
/// asked for. Memory: one entry for each unclosed opening and each pair so gathered, the first 64 of each
/// without heap.
///
/// An object serves one text and one thread. Starts in ascending order are fastest; any order is right.
class PairScan {
 public:
  /// Equal delimiters side by side.
  struct Run {
    const char* begin;  ///< where a match of the first one may begin: before `first` by a left-over byte
    const char* first;
    const char* stop;
    std::ptrdiff_t count;
    bool opens;
  };
  /// What becomes of an opening.
  struct Ending {
    const char* place;  ///< behind the pair; null: the opening makes none
    bool kept;          ///< there is a pair and the tail accepts behind it
    bool balanced;      ///< by counting
  };

  explicit PairScan(PairShape pairShape, PairTail pairTail = {}) : shape(pairShape), tail(pairTail) {}

  /// Binds to a text: the first byte of its buffer, where no byte stands before, and the end of the range.
  void bind(const char* bufferStart, const char* rangeEnd) {
    start = bufferStart;
    end = rangeEnd;
  }

  /// The place behind the pair that opens at `opening`, where an opening delimiter must stand; null when
  /// there is no such pair. Takes no account of the tail.
  const char* endOf(const char* opening);

  /// The next run of delimiters at `from` or behind it. @return false when there is none
  bool nextRun(const char* from, Run& run) const;

  /// What becomes of the last opening but `behind` of a run of openings that stops at `runStop`.
  Ending resolve(const char* runStop, std::ptrdiff_t behind);

  /// Whether the tail accepts at `place`.
  bool isKept(const char* place) const { return !tail.accepts || tail.accepts(tail.self, place); }

  /// The i-th delimiter of a run, from 0.
  const char* delimiter(const Run& run, std::ptrdiff_t i) const { return run.first + i * shape.width; }

  /// Calls `take(run, i, end)` for each balanced pair of a stretch of text in which all pairs are closed, in
  /// the order of their ends: the run and the index of its opening, and the place behind it.
  template <class Take>
  void forPairsInside(const char* from, const char* stop, Take take) const;

  /// Where the leftmost match that opens with the i-th delimiter of a run begins.
  const char* beginOf(const Run& run, std::ptrdiff_t i) const {
    return i == 0 ? run.begin : delimiter(run, i) - (shape.width - 1);
  }

 private:
  struct Unclosed {
    const char* opening;
    Ending ending;
  };
  struct Balanced {
    const char* opening;
    const char* end;
  };
  class Unwinding;
  static constexpr std::size_t withoutHeap = 64;

  bool isDelimiter(char c) const { return c == shape.open || c == shape.close; }
  bool isEscaped(const char* p) const { return shape.escapable && p > start && p[-1] == '\\'; }
  Run makeRun(const char* begin, const char* stop, char c) const;
  bool previousRun(const char* from, const char* limit, Run& run) const;
  const char* balancedEnd(const char* from, std::ptrdiff_t depth) const;
  const Unclosed* unclosedAt(const char* opening);
  const char* countedEnd(const char* opening, const char* runStop, std::ptrdiff_t depth);
  const char* endInside(const char* opening);

  PairShape shape;
  PairTail tail;
  const char* start = nullptr;
  const char* end = nullptr;
  const char* lastFrom = nullptr;  ///< the run of the last `endOf`
  const char* lastStop = nullptr;
  ShortStack<Unclosed, withoutHeap> unclosed;  ///< from right to left
  std::size_t cursor = 0;
  Balanced counted{nullptr, nullptr};        ///< the pair counted last that lies in no other
  ShortStack<Balanced, withoutHeap> inside;  ///< the pairs inside that one, by opening, once gathered
  std::size_t insideCursor = 0;
};

template <class Take>
void PairScan::forPairsInside(const char* from, const char* stop, Take take) const {
  struct Opening {
    Run run;
    std::ptrdiff_t index;
  };
  ShortStack<Opening, withoutHeap> open;
  for (Run run; nextRun(from, run) && run.first < stop; from = run.stop) {
    for (std::ptrdiff_t i = 0; run.opens && i < run.count; ++i) open.push({run, i});
    for (std::ptrdiff_t i = 0; !run.opens && i < run.count && !open.empty(); ++i) {
      const Opening opening = open.back();
      open.pop();
      take(opening.run, opening.index, delimiter(run, i + 1));
    }
  }
}

/// Finds pairs by what stands behind them, one after the other, in time linear in the text.
///
/// Pairs lie inside pairs, and the leftmost one that passes the test may be any of them. An outermost pair
/// that fails is passed through once more, with a stack of its openings, and the pairs inside that pass are
/// kept. Memory: one entry for each open level and each pair so kept, the first 64 of each without heap.
class PairSearch {
 public:
  PairSearch(PairShape shape, PairTail tail) : scan(shape, tail) {}

  /// As `PairScan::bind`.
  void bind(const char* bufferStart, const char* rangeEnd) { scan.bind(bufferStart, rangeEnd); }

  /// Finds the leftmost pair that begins at `from` or behind it and whose tail accepts. `from` must not go
  /// back from call to call.
  /// @param[out] begin,end  the pair; left alone when there is none
  /// @return whether there is one
  bool leftmost(const char* from, const char*& begin, const char*& end);

 private:
  struct Pair {
    const char* begin;
    const char* opening;
    const char* end;
  };
  static constexpr std::size_t withoutHeap = 64;

  bool leftmostOfRun(const PairScan::Run& run, Pair& found);
  bool leftmostInside(const char* from, Pair& found);
  void gatherInside(const char* from, const char* stop);

  PairScan scan;
  ShortStack<Pair, withoutHeap> inside;  ///< of the outermost pair passed last, by opening
  std::size_t insideTaken = 0;
  const char* insideStop = nullptr;
};

}  // namespace yard
