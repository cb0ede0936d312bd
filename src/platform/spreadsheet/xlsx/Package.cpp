#include "platform/spreadsheet/xlsx/Package.h"

#include <gsf/gsf-outfile-zip.h>
#include <gsf/gsf-output-memory.h>
#include <gsf/gsf.h>

#include <mutex>
#include <utility>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp::xlsx {
namespace {

/// zlib's usual balance; level 1 takes two thirds of the time and gives files an eighth larger.
constexpr int kDeflateLevel = 6;

struct Unref {
  void operator()(GsfOutput* output) const { g_object_unref(output); }
};
using Output = std::unique_ptr<GsfOutput, Unref>;

void Check(bool done, const std::string& step) {
  if (!done) throw SpreadsheetError("the .xlsx archive could not be written: " + step);
}

void InitLibrary() {
  static std::once_flag once;
  std::call_once(once, gsf_init);
}

}  // namespace

struct Package::Impl {
  Output memory;
  Output zip;
  Output part;

  void ClosePart() {
    const Output closed = std::move(part);
    if (closed) Check(gsf_output_close(closed.get()), "a part could not be closed");
  }
};

Package::Package() : impl_(std::make_unique<Impl>()) {
  InitLibrary();
  impl_->memory.reset(gsf_output_memory_new());
  impl_->zip.reset(GSF_OUTPUT(gsf_outfile_zip_new(impl_->memory.get(), nullptr)));
  Check(impl_->zip != nullptr, "no archive could be begun");
}

Package::~Package() {
  for (Output* output : {&impl_->part, &impl_->zip}) {
    if (*output && !gsf_output_is_closed(output->get())) gsf_output_close(output->get());
  }
}

void Package::BeginPart(const std::string& name) {
  impl_->ClosePart();
  impl_->part.reset(gsf_outfile_new_child_full(GSF_OUTFILE(impl_->zip.get()), name.c_str(), FALSE,
                                               "deflate-level", kDeflateLevel, nullptr));
  Check(impl_->part != nullptr, "part " + name + " could not be begun");
  GDateTime* earliest = g_date_time_new_utc(1980, 1, 1, 0, 0, 0.0);
  gsf_output_set_modtime(impl_->part.get(), earliest);
  g_date_time_unref(earliest);
}

void Package::Write(std::string_view bytes) {
  if (bytes.empty()) return;
  Check(gsf_output_write(impl_->part.get(), bytes.size(), reinterpret_cast<const guint8*>(bytes.data())),
        "a part could not be extended");
}

std::string Package::Finish() {
  impl_->ClosePart();
  Check(gsf_output_close(impl_->zip.get()), "its directory could not be written");
  const guint8* bytes = gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(impl_->memory.get()));
  return {reinterpret_cast<const char*>(bytes),
          static_cast<std::size_t>(gsf_output_size(impl_->memory.get()))};
}

}  // namespace excelexp::xlsx
