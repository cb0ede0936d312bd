#include "platform/spreadsheet/xls/XlsContainer.h"

#include <gsf/gsf.h>

#include <algorithm>
#include <new>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp::xls {
namespace {

/// A libgsf output that writes into a string. libgsf's own memory output keeps its bytes in a block that has
/// to be copied, and then the file is in memory twice.
struct StringSink {
  GsfOutput base;
  std::string* bytes;
};

gboolean WriteToString(GsfOutput* output, std::size_t count, const guint8* data) {
  std::string& bytes = *reinterpret_cast<StringSink*>(output)->bytes;
  const auto offset = static_cast<std::size_t>(output->cur_offset);
  const std::string_view added(reinterpret_cast<const char*>(data), count);
  try {
    if (offset == bytes.size()) {
      bytes.append(added);
    } else {
      bytes.resize(std::max(bytes.size(), offset + count));
      std::copy(added.begin(), added.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    return TRUE;
  } catch (const std::bad_alloc&) {
    return FALSE;  // no exception may pass through libgsf
  }
}

void InitialiseClass(gpointer klass, gpointer /*data*/) {
  auto* const output_class = static_cast<GsfOutputClass*>(klass);
  output_class->Close = [](GsfOutput*) -> gboolean { return TRUE; };
  output_class->Seek = [](GsfOutput*, gsf_off_t, GSeekType) -> gboolean { return TRUE; };
  output_class->Write = WriteToString;
}

GsfOutput* NewStringSink(std::string& bytes) {
  static const GType type = [] {
    gsf_init();
    return g_type_register_static_simple(gsf_output_get_type(), "ExcelexpStringSink", sizeof(GsfOutputClass),
                                         InitialiseClass, sizeof(StringSink), nullptr, GTypeFlags{});
  }();
  auto* const sink = static_cast<StringSink*>(g_object_new(type, nullptr));
  sink->bytes = &bytes;
  return &sink->base;
}

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

}  // namespace

struct XlsContainer::Impl {
  std::string bytes;
  Owned<GsfOutput> sink{NewStringSink(bytes)};
  Owned<GsfOutfile> file{gsf_outfile_msole_new(sink.get())};
  Owned<GsfOutput> workbook{gsf_outfile_new_child(file.get(), "Workbook", FALSE)};

  ~Impl() {
    // libgsf warns about what nobody closed, as after an error.
    for (GsfOutput* output : {workbook.get(), GSF_OUTPUT(file.get())}) {
      if (!gsf_output_is_closed(output)) gsf_output_close(output);
    }
  }
};

XlsContainer::XlsContainer(std::size_t expected_size) : impl_(std::make_unique<Impl>()) {
  impl_->bytes.reserve(expected_size);
}

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
  return std::move(impl_->bytes);
}

}  // namespace excelexp::xls
