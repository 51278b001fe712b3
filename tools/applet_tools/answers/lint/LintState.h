/** The state that the rules of lint examine, and their findings. */
#ifndef APPLET_TOOLS_ANSWERS_LINT_LINTSTATE_H
#define APPLET_TOOLS_ANSWERS_LINT_LINTSTATE_H

#include "applet_tools/answers/lint/lint.h"

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace applet_tools {

/** The state under examination and the findings so far. */
class LintState {
public:
    /** `goBack` restores the examined state. `refused` are the parameters with values that the load of `file`
     *  stored although their setters refuse them. The name of `file` is empty if there is none. */
    LintState(ScratchSession& session, std::function<void()> goBack, std::string file, Words refused)
        : m_session(session)
        , m_goBack(std::move(goBack))
        , m_file(std::move(file))
        , m_refused(std::move(refused)) {}

    ScratchSession& session() { return m_session; }
    const ParameterList& parameters() const { return m_session.parameters(); }
    /** The value; zero or empty if it cannot be read, for example in an invalid mode after a load. */
    Value value(const std::string& name);
    double number(const std::string& name) { return asDouble(value(name)); }
    /** True if the enumeration has one of these values. */
    bool is(const std::string& name, std::initializer_list<int> entries);
    /** True for a value changed since the bring-up. */
    bool isChanged(const std::string& name);
    /** True for a value that the load's setter refused but that reads back. */
    bool isRefused(const std::string& name) const;

    /** " --from FILE", to run another command on the same state; empty without a file. */
    std::string fromFile() const;

    void add(const char* rule, const Words& names, const std::string& why, const std::string& advice);
    /** `texts` are for display; `values` are the same as objects with at least a name. */
    void add(const char* rule, const Words& names, const Words& texts, const json& values,
             const std::string& why, const std::string& advice);
    /** Advises setting the first of the names to `wanted`, or to the nearest value that its setter accepts. */
    void propose(const char* rule, const Words& names, const Words& texts, const json& values,
                 const std::string& why, const Value& wanted, const std::string& orElse = "");
    void propose(const char* rule, const Words& names, const std::string& why, const Value& wanted,
                 const std::string& orElse = "");
    /** True when a rule wants the parameter to be set again. */
    bool isProposed(const std::string& name) const;

    /** Restores the state after a rule has tried values. */
    void goBack() { m_goBack(); }

    /** Runs last, since it tries values. */
    const std::vector<LintFinding>& findings();

private:
    struct Proposal {
        std::size_t finding;
        std::string name;
        Value wanted;
        std::string orElse;
    };

    /** For a refused value only the limits are reported; findings of other rules would hide them. */
    bool isAboutRefused(std::string_view rule, const Words& names) const;
    Words textsOf(const Words& names);
    json valuesOf(const Words& names);
    std::string adviceOn(const Proposal& proposal);

    ScratchSession& m_session;
    std::function<void()> m_goBack;
    std::vector<LintFinding> m_findings;
    std::vector<Proposal> m_proposals;
    std::string m_file;
    Words m_refused;
};

} // namespace applet_tools

#endif
