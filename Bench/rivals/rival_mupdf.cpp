// The same jobs against libmupdf: open FILE | boxes FILE | middle FILE OUT | nup FILE OUT [PASSWORD [sealed]]

#include <cstdio>
#include <cstring>
#include <string>

extern "C" {
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
}

namespace {

constexpr float sheetWidth = 841.89F;  // A4, landscape
constexpr float sheetHeight = 595.276F;

double sumOfBoxes(fz_context* context, pdf_document* source) {
  pdf_obj* const keys[] = {PDF_NAME(MediaBox), PDF_NAME(CropBox), PDF_NAME(BleedBox), PDF_NAME(TrimBox),
                           PDF_NAME(ArtBox)};
  double total = 0;
  for (int i = 0, n = pdf_count_pages(context, source); i < n; ++i) {
    pdf_obj* page = pdf_lookup_page_obj(context, source, i);
    const fz_rect media = pdf_to_rect(context, pdf_dict_get_inheritable(context, page, PDF_NAME(MediaBox)));
    for (pdf_obj* key : keys) {
      pdf_obj* box = pdf_dict_get_inheritable(context, page, key);
      const fz_rect rect = box ? pdf_to_rect(context, box) : media;
      total += rect.x0 + rect.y0 + rect.x1 + rect.y1;
    }
  }
  return total;
}

/// The page's content streams, joined and decoded.
fz_buffer* contentOf(fz_context* context, pdf_obj* page) {
  pdf_obj* contents = pdf_dict_get(context, page, PDF_NAME(Contents));
  if (!pdf_is_array(context, contents)) return pdf_load_stream(context, contents);
  fz_buffer* joined = fz_new_buffer(context, 1024);
  for (int i = 0, n = pdf_array_len(context, contents); i < n; ++i) {
    fz_buffer* part = pdf_load_stream(context, pdf_array_get(context, contents, i));
    fz_append_buffer(context, joined, part);
    fz_append_byte(context, joined, '\n');
    fz_drop_buffer(context, part);
  }
  return joined;
}

pdf_obj* formOf(fz_context* context, pdf_document* out, pdf_graft_map* map, pdf_obj* page) {
  const fz_rect box = pdf_to_rect(context, pdf_dict_get_inheritable(context, page, PDF_NAME(MediaBox)));
  pdf_obj* resources =
      pdf_graft_mapped_object(context, map, pdf_dict_get_inheritable(context, page, PDF_NAME(Resources)));
  fz_buffer* content = contentOf(context, page);
  pdf_obj* form = pdf_new_xobject(context, out, box, fz_identity, resources, content);
  fz_drop_buffer(context, content);
  pdf_drop_obj(context, resources);
  return form;
}

void addSheet(fz_context* context, pdf_document* source, pdf_document* out, pdf_graft_map* map, int first,
              int pages) {
  pdf_obj* resources = pdf_new_dict(context, out, 1);
  pdf_obj* xobjects = pdf_dict_put_dict(context, resources, PDF_NAME(XObject), 2);
  std::string content;
  for (int i = first; i < first + 2 && i < pages; ++i) {
    pdf_obj* page = pdf_lookup_page_obj(context, source, i);
    const fz_rect box = pdf_to_rect(context, pdf_dict_get_inheritable(context, page, PDF_NAME(MediaBox)));
    const float scale = fz_min(sheetWidth / 2 / (box.x1 - box.x0), sheetHeight / (box.y1 - box.y0));
    const std::string name = "P" + std::to_string(i - first);
    pdf_obj* form = formOf(context, out, map, page);
    pdf_dict_puts_drop(context, xobjects, name.c_str(), form);
    char line[128];
    std::snprintf(line, sizeof line, "q %g 0 0 %g %g 0 cm /%s Do Q\n", static_cast<double>(scale),
                  static_cast<double>(scale), static_cast<double>(i - first) * sheetWidth / 2, name.c_str());
    content += line;
  }
  fz_buffer* buffer = fz_new_buffer_from_copied_data(
      context, reinterpret_cast<const unsigned char*>(content.data()), content.size());
  pdf_obj* page =
      pdf_add_page(context, out, fz_make_rect(0, 0, sheetWidth, sheetHeight), 0, resources, buffer);
  pdf_insert_page(context, out, -1, page);
  pdf_drop_obj(context, page);
  fz_drop_buffer(context, buffer);
  pdf_drop_obj(context, resources);
}

/// @param password  of user and owner; null for an output that isn't encrypted
void write(fz_context* context, pdf_document* out, const char* path, const char* password) {
  pdf_write_options options = pdf_default_write_options;
  options.do_compress = 1;
  if (password) {
    options.do_encrypt = PDF_ENCRYPT_AES_256;
    std::snprintf(options.upwd_utf8, sizeof options.upwd_utf8, "%s", password);
    std::snprintf(options.opwd_utf8, sizeof options.opwd_utf8, "%s", password);
  }
  pdf_save_document(context, out, path, &options);
}

int run(fz_context* context, int count, char** arguments) {
  const std::string job = arguments[1];
  pdf_document* source = pdf_open_document(context, arguments[2]);
  if (count > 4 && !pdf_authenticate_password(context, source, arguments[4])) return 1;
  const int pages = pdf_count_pages(context, source);
  if (job == "open") {
    std::printf("%d\n", pages);
  } else if (job == "boxes") {
    std::printf("%.6g\n", sumOfBoxes(context, source));
  } else if (count > 3) {
    pdf_document* out = pdf_create_document(context);
    pdf_graft_map* map = pdf_new_graft_map(context, out);
    if (job == "middle")
      pdf_graft_mapped_page(context, map, -1, source, pages / 2);
    else
      for (int i = 0; i < pages; i += 2) addSheet(context, source, out, map, i, pages);
    write(context, out, arguments[3], count > 5 ? arguments[4] : nullptr);
    pdf_drop_graft_map(context, map);
    pdf_drop_document(context, out);
  }
  pdf_drop_document(context, source);
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  fz_context* context = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
  int result = 1;
  fz_try(context) result = run(context, count, arguments);
  fz_catch(context) std::fprintf(stderr, "%s\n", fz_caught_message(context));
  fz_drop_context(context);
  return result;
}
