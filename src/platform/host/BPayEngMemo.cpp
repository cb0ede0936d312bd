#include "platform/host/BPayEngMemo.h"

namespace excelexp {

void BPayEngMemo::WriteAllMemo(std::string_view text) {
  if (log_memo_ != nullptr) log_memo_->WriteLine(text);
  WriteInternalMemo(text);
}

void BPayEngMemo::WriteInternalMemo(std::string_view text) {
  if (internal_memo_ != nullptr) internal_memo_->WriteLine(text);
}

}  // namespace excelexp
