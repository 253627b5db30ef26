// JPEG through libjpeg: baseline and progressive, grey, YCbCr, RGB, CMYK and
// YCCK, with the EXIF orientation applied so the picture stands as taken.
#include <csetjmp>
#include <cstdio>  // before jpeglib.h, which uses FILE and size_t
#include <utility>

#include <jpeglib.h>
#include <jerror.h>

#include "platform/ImageFile.h"
#include "platform/ImageOrientation.h"
#include "platform/ImageRows.h"

namespace kxplatform {
namespace {

struct ErrorJump {
  jpeg_error_mgr mgr;
  std::jmp_buf jump;
};

void failDecode(j_common_ptr cinfo) { std::longjmp(reinterpret_cast<ErrorJump*>(cinfo->err)->jump, 1); }

// Warnings about the file's form are tolerated (stray bytes, odd markers);
// those about missing or broken scan data are not: libjpeg would paper over
// the hole with grey.
void onMessage(j_common_ptr cinfo, int level) {
  const int code = cinfo->err->msg_code;
  if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE))
    failDecode(cinfo);
}

// A progressive file can carry any number of scans, each a full pass over
// the coefficients: cap them so a small hostile file cannot take minutes.
void limitScans(j_common_ptr cinfo) {
  const j_decompress_ptr d = reinterpret_cast<j_decompress_ptr>(cinfo);
  if (d->input_scan_number > 500) failDecode(cinfo);
}

}  // namespace

bool decodeJpeg(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data || size < 4) return false;
  jpeg_decompress_struct cinfo;
  ErrorJump err;
  jpeg_progress_mgr progress;
  cinfo.err = jpeg_std_error(&err.mgr);
  err.mgr.error_exit = failDecode;
  err.mgr.emit_message = onMessage;
  RgbaRows rows;  // declared before setjmp so a longjmp leaves it valid
  std::vector<uint8_t> cmyk;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&cinfo);
    return false;
  }
  jpeg_create_decompress(&cinfo);
  progress.progress_monitor = limitScans;
  cinfo.progress = &progress;
  cinfo.mem->max_memory_to_use = long(kMaxImageBytes);
  jpeg_mem_src(&cinfo, data, static_cast<unsigned long>(size));
  jpeg_save_markers(&cinfo, JPEG_APP0 + 1, 0xFFFF);
  jpeg_read_header(&cinfo, TRUE);
  // Read now: finishing the decompression drops the saved markers.
  int orientation = 1;
  for (jpeg_saved_marker_ptr m = cinfo.marker_list; m; m = m->next)
    if (m->marker == JPEG_APP0 + 1) orientation = exifOrientation(m->data, m->data_length);
  // Huffman coding spends at least one bit on every 8 x 8 block of the
  // first scan: a file too short for that claims a size it cannot fill,
  // and is refused before a progressive decode sets up its coefficients.
  const uint64_t blocks = (uint64_t(cinfo.image_width) + 7) / 8 * ((uint64_t(cinfo.image_height) + 7) / 8);
  if (!cinfo.arith_code && blocks > uint64_t(size) * 8) failDecode(reinterpret_cast<j_common_ptr>(&cinfo));
  const bool isCmyk = cinfo.jpeg_color_space == JCS_CMYK || cinfo.jpeg_color_space == JCS_YCCK;
  cinfo.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_RGBA;
  jpeg_start_decompress(&cinfo);
  if (!rows.start(cinfo.output_width, cinfo.output_height)) failDecode(reinterpret_cast<j_common_ptr>(&cinfo));
  if (isCmyk) cmyk.resize(rows.rowBytes());
  while (uint8_t* row = rows.next()) {
    JSAMPROW target = isCmyk ? cmyk.data() : row;
    if (jpeg_read_scanlines(&cinfo, &target, 1) != 1) failDecode(reinterpret_cast<j_common_ptr>(&cinfo));
    if (!isCmyk) continue;
    // Files with an Adobe marker (nearly all CMYK JPEGs) store the inks
    // inverted: 255 means no ink.
    for (size_t i = 0; i < cmyk.size(); i += 4) {
      int c = cmyk[i], m = cmyk[i + 1], y = cmyk[i + 2], k = cmyk[i + 3];
      if (!cinfo.saw_Adobe_marker) c = 255 - c, m = 255 - m, y = 255 - y, k = 255 - k;
      row[i] = uint8_t((c * k + 127) / 255);
      row[i + 1] = uint8_t((m * k + 127) / 255);
      row[i + 2] = uint8_t((y * k + 127) / 255);
      row[i + 3] = 255;
    }
  }
  jpeg_finish_decompress(&cinfo);
  jpeg_destroy_decompress(&cinfo);
  DecodedImage image;
  if (!rows.finish(image)) return false;
  if (!applyOrientation(image, orientation)) return false;
  out = std::move(image);
  return true;
}

}  // namespace kxplatform
