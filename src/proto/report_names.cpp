#include "proto/report_names.h"

namespace ZEPH_MCUC {
namespace {

using enum ReportForm;

constexpr ReportName kReports[] = {
    {report::kReady, 1, kMark, "ready: the FPGA is loaded and has its parameters"},
    {report::kReset, 1, kNumber, "a factory reset begins, mode"},
    {report::kCardSize, 4, kSize, "size of the receiving cards"},
    {report::kShortcut, 1, kMark, "the screen is configured by software"},
    {report::kCardBrightness, 1, kNumber, "brightness was sent to the receiving cards"},
    {report::kCardMapping, 1, kNumber, "mapping was sent to the receiving cards"},
};

}  // namespace

std::span<const ReportName> ReportNames() { return kReports; }

}  // namespace ZEPH_MCUC
