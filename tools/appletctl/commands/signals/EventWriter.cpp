#include "appletctl/commands/signals/EventWriter.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

namespace appletctl {

EventWriter::EventWriter(Instance& instance, const std::string& file, DirectOutput& output)
    : m_fileName(file)
    , m_output(output)
    , m_events(instance) {
    if (file != "-") m_file.emplace(file);
}

bool EventWriter::write(std::int64_t picture) {
    const std::string lines = m_events.take(picture);
    if (!m_file) return m_output.write(lines);
    m_file->add(lines);
    return true;
}

void EventWriter::finish(CommandRun& run) {
    if (m_file) {
        m_file->finish();
        run.report.document["events"] = toUtf8(m_fileName);
    }
    if (const std::int64_t lost = m_events.lost(); lost > 0)
        run.fail(numberText(lost) + " events are missing: more came at a time than the board keeps");
}

} // namespace appletctl
