#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace pcrypt {

/// Of pieces of work that have `blocks` to go each, takes those that are done out of the span.
/// @return the blocks that each of the first `most` still has at least; 0 when none is left
template <class Work>
std::size_t blocksInAll(std::span<Work>& works, std::size_t most) {
  const auto isDone = [](const Work& work) { return work.blocks == 0; };
  const auto end = std::remove_if(works.begin(), works.end(), isDone);
  works = works.first(static_cast<std::size_t>(end - works.begin()));
  std::size_t least = 0;
  for (const Work& work : works.first(std::min(most, works.size())))
    least = least == 0 ? work.blocks : std::min(least, work.blocks);
  return least;
}

}  // namespace pcrypt
