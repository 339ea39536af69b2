#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/tessel_page.h"
#include "Tests/Support/pdf_builder.h"

namespace tessel_test {

/// An exported object whose members a test may look at.
struct ProbedPage : TESSEL::CTesselPage {
  using CTesselPage::CTesselPage;
  using CTesselPage::state;
};

/// A probed object that owns its bytes; `init` has run.
struct Probe {
  std::unique_ptr<std::istringstream> stream;
  std::unique_ptr<ProbedPage> page;
  int result = -1;  ///< of init

  ProbedPage& operator*() const { return *page; }
  ProbedPage* operator->() const { return page.get(); }
};

inline Probe probeBytes(std::string bytes, const std::string& password = {}) {
  Probe probe;
  probe.stream = std::make_unique<std::istringstream>(std::move(bytes));
  probe.page = std::make_unique<ProbedPage>(*probe.stream, password);
  probe.result = probe.page->init();
  return probe;
}
inline Probe probe(const PdfBuilder& builder) { return probeBytes(builder.build()); }

/// Selects page 1 and harvests it from `start` on.
inline Probe harvest(const PdfBuilder& builder, int start = 10) {
  Probe opened = probe(builder);
  opened->setPageNo(1);
  opened->setStartObjNo(start);
  return opened;
}

using Identity = TESSEL::CTesselPage::Identity;
using IdentityPairs = std::vector<TESSEL::CTesselPage::IdentityPair>;
using ObjectTexts = std::map<Identity, std::string>;

/// The harvested map as a plain one, to be compared whole.
inline ObjectTexts texts(const TESSEL::CTesselPage& page) { return page; }

/// The stand-in for an object that was taken out by its piece information.
inline const std::string emptyForm =
    "<</Type/XObject /Subtype/Form /Length 0 /BBox[0.0 0.0 1.0 1.0] >>\r\nstream\r\nendstream\r\n";

}  // namespace tessel_test
