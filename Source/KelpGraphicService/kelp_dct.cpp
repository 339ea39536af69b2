#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h>

#include "KelpGraphicService/kelp_codecs.h"

namespace KelpGraphicService_NS {
namespace {

/// A progressive image keeps all its coefficients, and each scan passes over all of them for a few bytes of
/// input.
constexpr long maxWorkMemory = 256L << 20;
constexpr int maxScans = 100;

/// The decoder and where it jumps to when it can't go on. Trivial to destroy, as a jump passes destructors
/// by.
struct Decoder {
  jpeg_decompress_struct image;
  jpeg_error_mgr errors;
  jpeg_source_mgr source;
  jpeg_progress_mgr progress;
  std::jmp_buf leave;
  FtResult result;
};

Decoder& decoderOf(j_common_ptr image) { return *static_cast<Decoder*>(image->client_data); }

[[noreturn]] void leave(j_common_ptr image, FtResult result) {
  Decoder& decoder = decoderOf(image);
  decoder.result = result;
  std::longjmp(decoder.leave, 1);
}

[[noreturn]] void onError(j_common_ptr image) {
  switch (image->err->msg_code) {
    case JERR_OUT_OF_MEMORY:
      leave(image, ftNoMemory);
    case JERR_NO_BACKING_STORE:
      leave(image, ftTooLarge);
    default:
      leave(image, ftDamaged);
  }
}

void onMessage(j_common_ptr /*image*/, int /*level*/) {}
void onOutput(j_common_ptr /*image*/) {}

void onSourceStep(j_decompress_ptr /*image*/) {}

/// The data have ended: the rows so far are the result.
boolean onSourceEmpty(j_decompress_ptr image) { leave(reinterpret_cast<j_common_ptr>(image), ftSuccess); }

void onSkip(j_decompress_ptr image, long count) {
  if (count <= 0) return;
  const auto n = static_cast<std::size_t>(count);
  if (n > image->src->bytes_in_buffer) onSourceEmpty(image);
  image->src->next_input_byte += n;
  image->src->bytes_in_buffer -= n;
}

void onProgress(j_common_ptr image) {
  const auto* decompress = reinterpret_cast<j_decompress_ptr>(image);
  if (decompress->input_scan_number > maxScans) leave(image, ftDamaged);
}

void setUp(Decoder& decoder, Bytes in) {
  decoder.image.err = jpeg_std_error(&decoder.errors);
  decoder.image.client_data = &decoder;
  decoder.errors.error_exit = onError;
  decoder.errors.emit_message = onMessage;
  decoder.errors.output_message = onOutput;
  decoder.source.next_input_byte = in.data();
  decoder.source.bytes_in_buffer = in.size();
  decoder.source.init_source = onSourceStep;
  decoder.source.fill_input_buffer = onSourceEmpty;
  decoder.source.skip_input_data = onSkip;
  decoder.source.resync_to_restart = jpeg_resync_to_restart;
  decoder.source.term_source = onSourceStep;
  decoder.progress.progress_monitor = onProgress;
}

FtResult readRows(jpeg_decompress_struct& image, Buffer& out) {
  const std::size_t rowBytes =
      std::size_t{image.output_width} * static_cast<std::size_t>(image.output_components);
  if (rowBytes * image.output_height > out.limit() - out.size()) return ftTooLarge;
  while (image.output_scanline < image.output_height) {
    if (const FtResult result = out.reserve(rowBytes); result != ftSuccess) return result;
    JSAMPROW row = out.end();
    if (jpeg_read_scanlines(&image, &row, 1) == 1) out.commit(rowBytes);
  }
  return ftSuccess;
}

FtResult readImage(Decoder& decoder, Buffer& out) {
  jpeg_decompress_struct& image = decoder.image;
  jpeg_create_decompress(&image);
  image.client_data = &decoder;
  image.src = &decoder.source;
  image.progress = &decoder.progress;
  image.mem->max_memory_to_use = maxWorkMemory;
  jpeg_read_header(&image, TRUE);
  jpeg_start_decompress(&image);
  return readRows(image, out);
}

}  // namespace

FtResult decodeDCT(Bytes in, Buffer& out) {
  Decoder decoder{};
  setUp(decoder, in);
  if (setjmp(decoder.leave) == 0) decoder.result = readImage(decoder, out);
  jpeg_destroy_decompress(&decoder.image);
  return decoder.result;
}

}  // namespace KelpGraphicService_NS
