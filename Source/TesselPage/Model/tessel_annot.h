#pragma once

#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "TesselPage/Structure/tessel_destinfo.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/tessel_enables.h"
#include "TesselPage/tessel_types.h"

namespace TESSEL {

struct FieldInfo;

/// Decides which annotations of a page go with it, harvests what they need, and writes each so that it fits
/// where the host has put the page (ISO 32000-2, 12.5). The filter's verdict travels as ObjFlag bits with
/// every reference, so that the whole subtree of a dropped annotation vanishes.
class CAnnot : public CObj {
 public:
  /// What getFieldType gives.
  enum FieldType : int {
    pushButton = 0,
    radioButton = 1,
    checkBox = 2,
    listBox = 3,
    comboBox = 4,
    textField = 5,
    signature = 6,
    unknownField = 8
  };

  CAnnot() { typeFlags = foundByTable; }

  /// An /Annots array behind its "[", or with arrayFlag the rest of a page behind that of a direct array; up
  /// to "endobj". Enters what it meets into the page objects of the main source and harvests it.
  /// @throws int 1000 when a reference leads to a page
  bool Read(CSourFile& source) override;
  bool ReadOthers(CSourFile& source, std::list<SObj>& work);
  /// Filters and harvests the object that this reader's identity names. The stream stands behind the object's
  /// head.
  bool ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work);

  /// /FT and /Ff of the object at hand; position restored. Whether the stream's state is good.
  bool getFieldInfo(CSourFile* main, CSourFile& source, std::string& fieldType, int& fieldFlags);
  /// The same of a parent field, wherever it lies.
  bool ReadParent(CSourFile& source, const SObj& parent, std::string& fieldType, int& fieldFlags);

  /// Sets ObjFlag::keptByAnnotFilter in `flags` when the host wants the subtype.
  void checkEnableAnnots(const std::string& subtype, TESSEL_AnnotsEnableE enable, int& flags,
                         const std::vector<std::string>& custom) const;
  /// A FieldType.
  int getFieldType(int fieldFlags, const std::string& fieldType) const;
  /// Sets both bits of ObjFlag::keptByAnyFilter in `flags` when the host wants the field.
  void checkEnableAcroForms(int fieldFlags, const std::string& fieldType, TESSEL_AcroFormsEnableE enable,
                            int& flags) const;

  /// Copies an annotation object with its geometry placed and its destinations replaced.
  bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) override;

  /// Identity of the page in the host's file.
  void setCurPageObj(int num, int gen) {
    pageNum = num;
    pageGen = gen;
  }

  static PointTD TransPoint(const PointTD& point, const PgCmTD& cm);
  static VerticesTD TransVertices(const VerticesTD& points, const PgCmTD& cm);
  /// @param sort  gives left below right and bottom below top
  static RectTD TransRect(const RectTD& rect, const PgCmTD& cm, bool sort);
  /// Turns a rectangle back around its corners, for an annotation that doesn't rotate with its page.
  static void RestoreRect(const RectTD& rect, int rotation, RectTD& out);
  /// Appends a "cm" operator without its translation.
  static void outputCm(std::string& out, const PgCmTD& cm);

  bool arrayFlag = false;  ///< the array is written directly in the page

 private:
  friend class AnnotArrayScan;
  friend class AnnotObjectScan;

  /// What the harvest of one array has learnt of objects that many annotations share, so that each is read
  /// once.
  struct Known {
    std::map<SObj, SDestInfo> dests;
    std::set<SObj> actions;
    /// Entries of the work list that have not been visited.
    std::map<SObj, std::list<SObj>::iterator> waiting;
  };

  /// The value of digits; what doesn't fit is the largest.
  static int flagsOf(const std::string& digits);
  /// Of a parent field: kept in the source, as any number of widgets ask for it.
  const FieldInfo& fieldInfoOf(CSourFile& source, const SObj& field);
  const SDestInfo& destOf(CSourFile& source, const SObj& ref);
  bool readAction(CSourFile& main, const SObj& ref);
  void indexWork(std::list<SObj>& work);
  bool visit(CSourFile& main, CSourFile& body, std::list<SObj>& work);

  int pageNum = 0;
  int pageGen = 0;
  Known known;
};

}  // namespace TESSEL
