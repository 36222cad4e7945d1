#include "hosts/kivreport/report_writer.h"

namespace kivreport {

void WriteReport(std::ostream& out, const Report& report, Format format) {
  switch (format) {
    case Format::kTable:
      return WriteTable(out, report);
    case Format::kCsv:
      return WriteCsv(out, report);
    case Format::kJson:
      return WriteJson(out, report);
  }
}

}  // namespace kivreport
