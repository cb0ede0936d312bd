#include "demo/DemoPayroll.h"

#include <algorithm>
#include <string>

#include "demo/DemoCalendar.h"
#include "demo/DemoCodes.h"
#include "demo/DemoPurposes.h"

namespace excelexp {
namespace {

constexpr int kPensionPercent = 5;
constexpr int kBonusTaxPercent = 10;
constexpr std::int64_t kNightCents = 1200;

struct PayLine {
  std::string_view item;
  double quantity = 1;
  std::int64_t rate = 0;
  std::int64_t cents = 0;
};

/// One pay record in the making.
struct PaySlip {
  std::string_view run;
  double working_days = 0;
  std::vector<PayLine> lines;

  void Add(std::string_view item, double quantity, std::int64_t rate, std::int64_t cents) {
    if (cents != 0) lines.push_back({item, quantity, rate, cents});
  }
  void Add(std::string_view item, std::int64_t cents) { Add(item, 1, cents, cents); }

  std::int64_t Sum(std::string_view kind) const {
    std::int64_t sum = 0;
    for (const PayLine& line : lines) sum += DemoPayItemOf(line.item).kind == kind ? line.cents : 0;
    return sum;
  }
  std::int64_t Gross() const {
    std::int64_t sum = 0;
    for (const PayLine& line : lines) sum += DemoPayItemOf(line.item).kind == "Deduction" ? 0 : line.cents;
    return sum;
  }
};

std::int64_t PercentOf(std::int64_t cents, int percent) {
  return (cents * percent + 50) / 100;
}

/// Tax of a month: nothing up to 3,000, four percent of the part up to 6,000, eight percent above.
std::int64_t MonthlyTax(std::int64_t cents) {
  constexpr std::int64_t kFree = 300000;
  constexpr std::int64_t kLow = 600000;
  return PercentOf(std::clamp(cents - kFree, std::int64_t{0}, kLow - kFree), 4) +
         PercentOf(std::max(cents - kLow, std::int64_t{0}), 8);
}

/// One employee in one month of the year.
class PayMonth {
 public:
  PayMonth(std::uint64_t seed, const DemoEmployee& employee, int month)
      : seed_(seed),
        employee_(employee),
        month_(month),
        first_(FirstDay(kDemoYear, month)),
        last_(LastDay(kDemoYear, month)),
        random_(seed, employee.sys_id, kDrawPay + month) {}

  bool Employed() const { return employee_.EmployedBetween(first_, last_); }

  PaySlip MonthEnd() {
    PaySlip slip{"MONTHEND", 0, {}};
    if (employee_.hourly) {
      AddHours(slip);
    } else {
      AddMonthlyPay(slip);
      AddFixed(slip, "Allowance");
      AddOvertime(slip);
    }
    if (employee_.shifts) {
      const int nights = random_.Between(4, 10);
      slip.Add("NIGHT", nights, kNightCents, nights * kNightCents);
    }
    if (random_.Chance(10)) slip.Add("MEDICAL", std::int64_t{random_.Between(20, 180)} * 100);
    AddDeductions(slip);
    return slip;
  }

  /// Something put right after the month was closed; no lines for most.
  PaySlip Correction() {
    PaySlip slip{"CORRECT", 0, {}};
    if (random_.Chance(4)) slip.Add("BACKPAY", std::int64_t{random_.Between(20, 120)} * 100);
    return slip;
  }

  /// December's bonus for those who served half the year; no lines for the others.
  PaySlip Bonus() {
    PaySlip slip{"BONUS", 0, {}};
    const bool served =
        employee_.hire < FirstDay(kDemoYear, 7) && (!employee_.ceased || *employee_.ceased > last_);
    if (month_ != 12 || employee_.hourly || !served) return slip;
    slip.Add("BONUS", PercentOf(employee_.rate, random_.Between(50, 200)));
    slip.Add("PENSION", PercentOf(slip.Gross(), kPensionPercent));
    slip.Add("TAX", PercentOf(slip.Gross(), kBonusTaxPercent));
    return slip;
  }

 private:
  std::int64_t DaysOfMonth() const { return (last_ - first_).count() + 1; }
  std::int64_t DaysEmployed() const {
    const DemoDay from = std::max(first_, employee_.hire);
    const DemoDay to = employee_.ceased ? std::min(last_, *employee_.ceased) : last_;
    return (to - from).count() + 1;
  }
  /// The part of a month's amount that falls on the days employed.
  std::int64_t Part(std::int64_t cents) const {
    return (cents * DaysEmployed() + DaysOfMonth() / 2) / DaysOfMonth();
  }

  void AddMonthlyPay(PaySlip& slip) {
    const std::int64_t rate = employee_.RateOn(first_);
    const std::int64_t whole_days = DaysEmployed() * 5 / 7;
    slip.working_days = static_cast<double>(whole_days);
    slip.Add("BASIC", slip.working_days, rate, Part(rate));
    const bool late_raise = employee_.raised && *employee_.raised == first_ && random_.Chance(40);
    if (late_raise) slip.Add("BACKPAY", employee_.rate - employee_.first_rate);
  }

  void AddHours(PaySlip& slip) {
    std::int64_t normal_halves = 0;
    std::int64_t over_halves = 0;
    std::int64_t meals = 0;
    for (const DemoWorkDay& day : DrawDemoWorkDays(seed_, employee_, month_)) {
      normal_halves += day.normal_halves;
      over_halves += day.over_halves;
      meals += day.meal ? 1 : 0;
      slip.working_days += 1;
    }
    const std::int64_t rate = employee_.RateOn(first_);
    const std::int64_t over_rate = DemoOvertimeRate(rate);
    slip.Add("BASIC", static_cast<double>(normal_halves) / 2, rate, normal_halves * rate / 2);
    slip.Add("OT15", static_cast<double>(over_halves) / 2, over_rate, over_halves * over_rate / 2);
    slip.Add("MEAL", static_cast<double>(meals), kDemoMealCents, meals * kDemoMealCents);
  }

  void AddFixed(PaySlip& slip, std::string_view kind) {
    for (const DemoFixedItem& fixed : employee_.fixed_items) {
      if (DemoPayItemOf(fixed.item).kind == kind) slip.Add(fixed.item, 1, fixed.cents, Part(fixed.cents));
    }
  }

  void AddOvertime(PaySlip& slip) {
    const bool operations = employee_.category == DemoCategory::kOperations;
    if (!operations && employee_.category != DemoCategory::kStaff) return;
    // Twelve months' pay over the hours of 52 weeks of 44 hours.
    const std::int64_t hour = employee_.RateOn(first_) * 12 / (52 * 44);
    const auto add = [&](std::string_view item, int chance, int most_halves, std::int64_t rate) {
      if (!random_.Chance(chance)) return;
      const int halves = random_.Between(2, most_halves);
      slip.Add(item, halves / 2.0, rate, (halves * rate + 1) / 2);
    };
    add("OT15", operations ? 65 : 30, operations ? 40 : 16, hour * 3 / 2);
    add("OT20", operations ? 20 : 5, 16, hour * 2);
  }

  void AddDeductions(PaySlip& slip) {
    const std::int64_t wage = slip.Gross() - slip.Sum("Reimbursement");
    slip.Add("PENSION", PercentOf(wage, kPensionPercent));
    slip.Add("TAX", MonthlyTax(wage));
    if (wage > 0) AddFixed(slip, "Deduction");
  }

  std::uint64_t seed_;
  const DemoEmployee& employee_;
  int month_;
  DemoDay first_;
  DemoDay last_;
  DemoRandom random_;
};

/// The pay record tables, open for writing.
class PayrollWriter {
 public:
  explicit PayrollWriter(SqliteWriter& writer) : writer_(writer) {}

  void Write(const DemoEmployee& employee, int month, PaySlip slip) {
    if (slip.lines.empty()) return;
    const std::int64_t deduction = slip.Sum("Deduction");
    const std::int64_t net = slip.Gross() - deduction;
    records_.Insert({kDemoYear, month, employee.sys_id, slip.run, slip.working_days,
                     DemoAmount(slip.Sum("PayElement")), DemoAmount(slip.Sum("Allowance")),
                     DemoAmount(slip.Sum("OTRecord")), DemoAmount(slip.Sum("ShiftRecord")),
                     DemoAmount(slip.Sum("Reimbursement")), DemoAmount(slip.Gross()), DemoAmount(deduction),
                     DemoAmount(net)});
    std::sort(slip.lines.begin(), slip.lines.end(),
              [](const PayLine& a, const PayLine& b) { return a.item < b.item; });
    for (const PayLine& line : slip.lines) {
      items_.Insert({kDemoYear, month, employee.sys_id, slip.run, line.item, line.quantity,
                     DemoAmount(line.rate), DemoAmount(line.cents)});
    }
    Pay(employee, month, slip, net);
  }

 private:
  void Pay(const DemoEmployee& employee, int month, const PaySlip& slip, std::int64_t net) {
    const std::int64_t first = employee.second_account ? PercentOf(net, 70) : net;
    PayOne(employee, month, slip, 1, first);
    if (net > first) PayOne(employee, month, slip, 2, net - first);
  }

  void PayOne(const DemoEmployee& employee, int month, const PaySlip& slip, int sequence,
              std::int64_t cents) {
    static constexpr std::string_view kCategories[] = {"ByCash", "ByCheque", "ByBank"};
    static constexpr std::string_view kBanks[] = {"7012", "7135", "7288"};
    const bool cash = employee.payment == DemoPayment::kCash;
    const bool bank = employee.payment == DemoPayment::kBank;
    const std::string account =
        bank ? std::to_string(100000000 + std::int64_t{employee.sys_id} * 10 + sequence) : "";
    payments_.Insert({kDemoYear, month, employee.sys_id, slip.run,
                      kCategories[static_cast<int>(employee.payment)], sequence,
                      cash ? "" : kBanks[employee.sys_id % 3],
                      cash ? "" : "B" + std::to_string(10 + employee.sys_id % 5), account, "LOCAL",
                      DemoAmount(cents), DemoAmount(cents)});
  }

  SqliteWriter& writer_;
  DemoTable records_{
      writer_,
      "PayRecord (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId, WorkingDays, BasicPay, "
      "TotalAllowance, OvertimePay, ShiftPay, TotalReimbursement, GrossWage, TotalDeduction, NetWage)"};
  DemoTable items_{writer_,
                   "PayRecItem (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId, "
                   "PayItemId, PayQuantity, "
                   "PayRate, PayAmount)"};
  DemoTable payments_{
      writer_,
      "PayRecBank (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId, PaymentCategory, "
      "PaymentSequence, BankCode, BankBranchCode, BankAccount, ExchangeRateID, BankPaymentAmt, "
      "BankPaymentValue)"};
};

}  // namespace

void WriteDemoPayroll(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees,
                      const std::function<void()>& tick) {
  PayrollWriter payroll(writer);
  for (int month = 1; month <= 12; ++month) {
    for (const DemoEmployee& employee : employees) {
      PayMonth pay(seed, employee, month);
      if (pay.Employed()) {
        PaySlip month_end = pay.MonthEnd();
        payroll.Write(employee, month, pay.Correction());
        payroll.Write(employee, month, std::move(month_end));
        payroll.Write(employee, month, pay.Bonus());
      }
      tick();
    }
  }
}

}  // namespace excelexp
