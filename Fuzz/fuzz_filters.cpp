// Data of a filter, with parameters from the first bytes.
#include "Fuzz/fuzz_target.h"
#include "KelpGraphicService/kelp_graphic_service.h"

using namespace KelpGraphicService_NS;

namespace {

/// A parameter: mostly small, now and then at the edges of its range.
std::int32_t parameter(fuzz::Input& input) {
  constexpr std::int32_t edges[] = {-1, 0, 0x7FFFFFFF, -0x7FFFFFFF - 1, 65536, 1728};
  const unsigned char byte = input.byte();
  return byte < 0xFA ? byte % 32 : edges[byte - 0xFA];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  FilterPropTD prop;
  for (std::int32_t* field :
       {&prop.filterKind, &prop.columns, &prop.colors, &prop.k, &prop.rows, &prop.predictor,
        &prop.bitsPerComponent, &prop.endOfLine, &prop.blackIs1, &prop.earlyChange, &prop.encodedByteAlign})
    *field = parameter(input);
  std::string bytes = input.rest();
  MemTD in, out;
  in.data = bytes.data();
  in.size = static_cast<std::uint32_t>(bytes.size());
  in.size64 = bytes.size();
  const int result = Ft_InflateStream(in, out, prop);
  fuzz::require(result == ftSuccess || (out.data == nullptr && out.size64 == 0));
  Ft_MemClear(out);
  return 0;
}
