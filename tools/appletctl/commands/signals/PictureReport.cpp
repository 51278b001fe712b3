#include "appletctl/commands/signals/PictureReport.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/picture_record.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

namespace appletctl {
namespace {

std::string flagsOf(const vboard_record& record) {
    Words flags;
    if (record.is_short) flags.emplace_back("short");
    if (record.is_narrow) flags.emplace_back("narrow");
    if (record.lost_before > 0) flags.push_back(numberText(record.lost_before) + " lost before");
    return flags.empty() ? "-" : join(flags, ", ");
}

} // namespace

PictureReport::PictureReport(const Options& options, const GrabOptions& own, Report& report)
    : m_options(options)
    , m_own(own)
    , m_report(report) {
    m_report.document["pictures"] = nlohmann::ordered_json::array();
    m_table.setTitles({"PICTURE", "TICK", "TIME", "WIDTH", "LINES", "FLAGS", "FILE"});
    m_table.setDispensable({"TICK", "TIME"});
}

void PictureReport::add(const TakenPicture& picture) {
    if (picture.statistics) m_statistics.count(*picture.statistics);
    if (m_options.json)
        addToDocument(picture);
    else
        addToText(picture);
}

void PictureReport::addToDocument(const TakenPicture& picture) {
    auto& row = m_report.document["pictures"].emplace_back(asJson(picture.record));
    if (!picture.digest.empty()) row["sha256"] = picture.digest;
    if (!picture.file.empty()) row["file"] = toUtf8(picture.file);
    if (picture.statistics) row["statistics"] = asJson(*picture.statistics);
}

void PictureReport::addToText(const TakenPicture& picture) {
    const vboard_record& record = picture.record;
    const std::string number = numberText(record.picture), file = printable(picture.file);
    m_hasPictures = true;
    if (!picture.digest.empty() && !m_options.quiet)
        m_digests += picture.digest + "  " + (file.empty() ? number : file) + '\n';
    if (!isTableShown()) return;
    m_table.addRow({number, numberText(record.arrival), durationText(record.arrival),
                    numberText(record.width), numberText(record.lines), flagsOf(record),
                    file.empty() ? "-" : file});
    if (picture.statistics) m_statistics.addRows(number, *picture.statistics);
}

void PictureReport::finish(std::int64_t lines) {
    finishText(lines);
    m_report.document["lines"] = lines;
    if (!m_own.wantsStatistics) return;
    m_report.document["statistics"] = asJson(m_statistics.ofAll());
    if (m_hasPictures) m_report.text += '\n' + m_statistics.text();
}

void PictureReport::finishText(std::int64_t lines) {
    m_report.isVerbatim = m_own.isForProgram();
    if (m_own.isForProgram()) {
        m_report.text = m_digests; // nothing else, for comparisons of the whole text
        return;
    }
    if (!m_hasPictures) return;
    m_report.text += m_table.render(Style::forStream(STDOUT_FILENO));
    if (m_own.lines) m_report.text += lineOf({"lines", numberText(lines)}, numberText(lines) + " lines.");
}

} // namespace appletctl
