#pragma once

namespace TESSEL {

/// Bits of SObj::objFlags: by which key an object was reached and what the filters said of it.
namespace ObjFlag {
inline constexpr int none = 0;
inline constexpr int page = 0x1;  ///< a page of a merge: written with the page tree
inline constexpr int underAnnots = 0x2;
inline constexpr int xrefStream = 0x4;
inline constexpr int underThumb = 0x8;  ///< as a mask: the reference is not followed
inline constexpr int underContents = 0x10;
inline constexpr int underResources = 0x20;
inline constexpr int underFont = 0x40;
inline constexpr int underXObject = 0x80;
inline constexpr int notAField = 0x200;          ///< left out of the form that a merge writes
inline constexpr int underParent = 0x400;        ///< as a mask: the reference is the parent
inline constexpr int annotSubtree = 0x1000;      ///< as a mask in a page: a direct /Annots array
inline constexpr int underIllustrator = 0x2000;  ///< as a mask: the reference is not followed
inline constexpr int insideMK = 0x10000;
inline constexpr int annotParent = 0x20000;
inline constexpr int kidOfAnnotParent = 0x40000;
inline constexpr int keptByAnnotFilter = 0x80000;
inline constexpr int keptByFormFilter = 0x100000;
inline constexpr int action = 0x200000;
inline constexpr int notShareable = 0x800000;  ///< a stream whose writing dropped a reference

/// Entered for other reasons than the harvest: such an object gets no number and no text.
inline constexpr int outsideHarvest = underContents | underResources;
/// Not among the objects that a merge writes one by one.
inline constexpr int notMerged = page | 0x100 | 0x800;
/// Written by the annotation writer.
inline constexpr int annotLike = underAnnots | annotSubtree;
inline constexpr int keptByAnyFilter = keptByAnnotFilter | keptByFormFilter;

/// An object of an annotation's subtree that no filter kept.
constexpr bool dropped(int flags) { return (flags & (annotSubtree | keptByAnyFilter)) == annotSubtree; }
}  // namespace ObjFlag

}  // namespace TESSEL
