#pragma once

// Tables of identities for what is kept of every object of a file. A tree's node for each would take many
// times the room of what it holds. The numbers of objects that belong together lie close together, so a node
// here holds a run of neighbours; numbers chosen to lie far apart cost about as much as in a tree.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace TESSEL {

/// Where an identity lies: its block's key, and its place within the block of `size` neighbours.
template <int bits>
struct BlockPlace {
  static constexpr std::size_t size = std::size_t{1} << bits;

  explicit BlockPlace(const std::pair<int, int>& identity)
      : block(identity.first >> bits, identity.second),
        index(static_cast<unsigned>(identity.first) & (size - 1)) {}

  std::pair<int, int> block;  ///< number without its lowest bits, generation
  std::size_t index;
};

/// A set of identities (object number and generation).
class IdentitySet {
 public:
  using Identity = std::pair<int, int>;

  /// @return whether it is new
  bool insert(const Identity& identity) {
    const Place place(identity);
    std::uint64_t& members = blocks[place.block];
    const bool isNew = (members & maskOf(place)) == 0;
    members |= maskOf(place);
    count += isNew ? 1 : 0;
    return isNew;
  }
  bool contains(const Identity& identity) const {
    const Place place(identity);
    const auto found = blocks.find(place.block);
    return found != blocks.end() && (found->second & maskOf(place)) != 0;
  }
  std::size_t size() const { return count; }

 private:
  using Place = BlockPlace<6>;
  static std::uint64_t maskOf(const Place& place) { return std::uint64_t{1} << place.index; }

  std::map<Identity, std::uint64_t> blocks;
  std::size_t count = 0;
};

/// A map from identities to small values.
template <class Value>
class IdentityMap {
 public:
  using Identity = std::pair<int, int>;

  /// The value of an identity, or null; it stays where it is until it is erased.
  const Value* find(const Identity& identity) const {
    const Place place(identity);
    const auto found = blocks.find(place.block);
    return found != blocks.end() && found->second.holds(place) ? &found->second.values[place.index] : nullptr;
  }
  bool contains(const Identity& identity) const { return find(identity) != nullptr; }
  /// A value that is there already stays.
  /// @return whether it is new
  bool insert(const Identity& identity, const Value& value) {
    const Place place(identity);
    Block& block = blocks[place.block];
    if (block.holds(place)) return false;
    block.members |= maskOf(place);
    block.values[place.index] = value;
    return true;
  }
  void erase(const Identity& identity) {
    const Place place(identity);
    const auto found = blocks.find(place.block);
    if (found == blocks.end()) return;
    found->second.members &= ~maskOf(place);
    if (found->second.members == 0) blocks.erase(found);
  }
  /// Appends all, in the order of number and generation.
  void appendTo(std::vector<std::pair<Identity, Value>>& pairs) const {
    const auto first = static_cast<std::ptrdiff_t>(pairs.size());
    for (const auto& [key, block] : blocks)
      for (std::size_t i = 0; i < Place::size; ++i)
        if (const int number = (key.first << bits) + static_cast<int>(i); block.members >> i & 1)
          pairs.emplace_back(Identity{number, key.second}, block.values[i]);
    // Generations of one number lie in blocks of their own.
    const auto byIdentity = [](const auto& a, const auto& b) { return a.first < b.first; };
    if (!std::is_sorted(pairs.begin() + first, pairs.end(), byIdentity))
      std::sort(pairs.begin() + first, pairs.end(), byIdentity);
  }

 private:
  static constexpr int bits = 3;
  using Place = BlockPlace<bits>;
  using Members = std::uint32_t;
  static Members maskOf(const Place& place) { return Members{1} << place.index; }

  struct Block {
    Members members = 0;
    std::array<Value, Place::size> values{};
    bool holds(const Place& place) const { return (members & maskOf(place)) != 0; }
  };
  std::map<Identity, Block> blocks;
};

}  // namespace TESSEL
