#include "host/LastError.h"

#include "applet_host/AppletHost.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/station/frame_memory.h"

#include <algorithm>
#include <new>

namespace host {
namespace {

using nlohmann::ordered_json;

struct LastError {
    int code = VEXO_OK;
    bool hasWords = true; // false: there was no memory for the message
    std::string words = "no call has failed";
    std::string details = "{}";
    std::string codeText;
};

LastError& lastError() {
    thread_local LastError ofThread;
    return ofThread;
}

struct CodeRow {
    int code;
    const char* symbol;
    const char* meaning;
};

constexpr CodeRow codeRows[] = {
    {VEXO_OK, "VEXO_OK", "done"},
    {VEXO_TIMEOUT, "VEXO_TIMEOUT", "timed out"},
    {VEXO_ERR_ARGUMENT, "VEXO_ERR_ARGUMENT", "a null pointer, or an argument beyond its limits"},
    {VEXO_ERR_NAME, "VEXO_ERR_NAME", "no such name, id or index"},
    {VEXO_ERR_VALUE, "VEXO_ERR_VALUE", "no such value, or it does not fit in the type"},
    {VEXO_ERR_KIND, "VEXO_ERR_KIND", "the parameter has another kind of value"},
    {VEXO_ERR_SPACE, "VEXO_ERR_SPACE", "the caller's memory is too small"},
    {VEXO_ERR_LIBRARY, "VEXO_ERR_LIBRARY", "a library was not found or cannot be loaded"},
    {VEXO_ERR_UNAVAILABLE, "VEXO_ERR_UNAVAILABLE", "the applet did not come up, or a part is missing"},
    {VEXO_ERR_NOT_VIRTUAL, "VEXO_ERR_NOT_VIRTUAL", "only a virtual board has that"},
    {VEXO_ERR_STATE, "VEXO_ERR_STATE", "not possible now"},
    {VEXO_ERR_GONE, "VEXO_ERR_GONE", "the picture is not in the memory"},
    {VEXO_ERR_FILE, "VEXO_ERR_FILE", "a file cannot be read or written"},
    {VEXO_ERR_MEMORY, "VEXO_ERR_MEMORY", "no memory is left"},
    {VEXO_ERR_FAILED, "VEXO_ERR_FAILED", "failed"},
};

const CodeRow* ownRow(int code) {
    const auto* const row = std::ranges::find(codeRows, code, &CodeRow::code);
    return row != std::end(codeRows) ? row : nullptr;
}

ordered_json codeAsJson(int code) {
    const CodeRow* const row = ownRow(code);
    if (row == nullptr) return applet_tools::codeAsJson(code);
    return {{"code", code}, {"symbol", row->symbol}, {"meaning", row->meaning}};
}

std::string codeInWords(int code) {
    const CodeRow* const row = ownRow(code);
    return row == nullptr ? applet_tools::codeInWords(code) : std::to_string(code) + ", " + row->meaning;
}

int record(int code, const std::string& words, const ordered_json& members) noexcept {
    LastError& last = lastError();
    last.code = code;
    last.hasWords = false;
    try {
        ordered_json details = codeAsJson(code);
        details["message"] = words;
        if (members.is_object()) details.update(members);
        last.words = words;
        last.details = details.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
        last.hasWords = true;
    } catch (const std::exception&) { // no memory
        last.code = VEXO_ERR_MEMORY;
    }
    return last.code;
}

} // namespace

int recordFailure() noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return record(error.code, error.what(), error.members);
    } catch (const applet_tools::UnknownName& error) {
        return record(VEXO_ERR_NAME, error.what(), {{"suggestions", error.nearest}});
    } catch (const applet_tools::UsageError& error) {
        return record(VEXO_ERR_VALUE, error.what(), nullptr);
    } catch (const applet_tools::AssumptionRefused& error) {
        return record(error.code, error.what(), error.members);
    } catch (const applet_tools::AcquisitionRefused& error) {
        return record(error.code, error.what(), nullptr);
    } catch (const applet_tools::Unavailable& error) {
        return record(VEXO_ERR_UNAVAILABLE, error.what(), nullptr);
    } catch (const applet_host::HostError& error) {
        return record(VEXO_ERR_LIBRARY, error.what(), nullptr);
    } catch (const std::bad_alloc&) {
        return record(VEXO_ERR_MEMORY, "no memory is left", nullptr);
    } catch (const std::exception& error) {
        return record(VEXO_ERR_FAILED, error.what(), nullptr);
    } catch (...) {
        return record(VEXO_ERR_FAILED, "an unknown failure", nullptr);
    }
}

int fail(int code, const std::string& words) noexcept { return record(code, words, nullptr); }

int failNull(const char* what) noexcept {
    return guarded([&]() -> int { throw Error(VEXO_ERR_ARGUMENT, std::string(what) + " is null"); });
}

} // namespace host

using namespace host;

const char* vexo_code_text(int code) {
    LastError& last = lastError();
    const int failed = guarded([&] {
        last.codeText = codeInWords(code);
        return VEXO_OK;
    });
    return failed == VEXO_OK ? last.codeText.c_str() : "no memory is left";
}

int vexo_last_code() { return lastError().code; }

const char* vexo_last_error() {
    const LastError& last = lastError();
    return last.hasWords ? last.words.c_str() : "no memory is left";
}

const char* vexo_last_details() {
    const LastError& last = lastError();
    return last.hasWords ? last.details.c_str() : "{}";
}
