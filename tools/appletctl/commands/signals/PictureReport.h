/** The pictures in the report of "grab". */
#ifndef APPLETCTL_COMMANDS_SIGNALS_PICTUREREPORT_H
#define APPLETCTL_COMMANDS_SIGNALS_PICTUREREPORT_H

#include "applet_tools/station/Grabber.h"
#include "appletctl/base/Options.h"
#include "appletctl/base/Report.h"
#include "appletctl/base/Table.h"
#include "appletctl/commands/signals/StatisticsTable.h"
#include "appletctl/commands/signals/grab_request.h"

#include <cstdint>
#include <optional>
#include <string>

namespace appletctl {

/** A picture, with what its options asked for. */
struct TakenPicture {
    const vboard_record& record;
    std::string file;   /**< that it was written to; empty: none */
    std::string digest; /**< empty: not wanted */
    std::optional<PictureStatistics> statistics;
};

/** Lists pictures in the document with --json, else as digests with --hash, else as rows of a table. */
class PictureReport {
public:
    PictureReport(const Options& options, const GrabOptions& own, Report& report);

    void add(const TakenPicture& picture);
    /** Adds the text, the statistics and the number of lines to the report, after the last picture. */
    void finish(std::int64_t lines);

private:
    /** Otherwise no row is kept. */
    bool isTableShown() const { return !m_options.json && !m_options.quiet && !m_own.isForProgram(); }
    void addToDocument(const TakenPicture& picture);
    void addToText(const TakenPicture& picture);
    void finishText(std::int64_t lines);

    const Options& m_options;
    const GrabOptions& m_own;
    Report& m_report;
    Table m_table;
    std::string m_digests;
    StatisticsTable m_statistics;
    bool m_hasPictures = false; // in the text
};

} // namespace appletctl

#endif
