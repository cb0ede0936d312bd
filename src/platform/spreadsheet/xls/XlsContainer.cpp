#include "platform/spreadsheet/xls/XlsContainer.h"

#include <gsf/gsf.h>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp::xls {
namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

void Check(gboolean done, GsfOutput* output) {
  if (done) return;
  const GError* const error = gsf_output_error(output);
  throw SpreadsheetError(std::string("The .xls container could not be written: ") +
                         (error == nullptr ? "unknown reason" : error->message) + ".");
}

void Append(GsfOutput* output, std::string_view bytes) {
  Check(gsf_output_write(output, bytes.size(), reinterpret_cast<const guint8*>(bytes.data())), output);
}

GsfOutput* NewMemory() {
  static const bool initialised = (gsf_init(), true);
  static_cast<void>(initialised);
  return gsf_output_memory_new();
}

}  // namespace

struct XlsContainer::Impl {
  Owned<GsfOutput> memory{NewMemory()};
  Owned<GsfOutfile> file{gsf_outfile_msole_new(memory.get())};
  Owned<GsfOutput> workbook{gsf_outfile_new_child(file.get(), "Workbook", FALSE)};

  ~Impl() {
    // libgsf warns about what nobody closed, as after an error.
    for (GsfOutput* output : {workbook.get(), GSF_OUTPUT(file.get())}) {
      if (!gsf_output_is_closed(output)) gsf_output_close(output);
    }
  }
};

XlsContainer::XlsContainer() : impl_(std::make_unique<Impl>()) {}

XlsContainer::~XlsContainer() = default;

void XlsContainer::Write(std::size_t position, std::string_view bytes) {
  GsfOutput* const output = impl_->workbook.get();
  const auto offset = static_cast<gsf_off_t>(position);
  if (gsf_output_tell(output) != offset) Check(gsf_output_seek(output, offset, G_SEEK_SET), output);
  Append(output, bytes);
}

std::string XlsContainer::Finish(std::string_view summary_information) {
  GsfOutput* const root = GSF_OUTPUT(impl_->file.get());
  Check(gsf_output_close(impl_->workbook.get()), impl_->workbook.get());
  const Owned<GsfOutput> summary(gsf_outfile_new_child(impl_->file.get(), "\005SummaryInformation", FALSE));
  Append(summary.get(), summary_information);
  Check(gsf_output_close(summary.get()), summary.get());
  Check(gsf_output_close(root), root);
  GsfOutput* const memory = impl_->memory.get();
  const guint8* const bytes = gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(memory));
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(gsf_output_size(memory))};
}

}  // namespace excelexp::xls
