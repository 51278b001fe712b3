#include "support/applet_fixture.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <pthread.h>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace support {

const applet_host::AppletHost& host() {
    static const applet_host::AppletHost libraries;
    return libraries;
}

bool isLoaded(const char* library) {
    void* handle = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr) return false;
    dlclose(handle);
    return true;
}

void* loaderFunction(const char* name) {
    static void* const loader = dlopen("libtslrt.so", RTLD_NOW | RTLD_NOLOAD);
    void* found = loader != nullptr ? dlsym(loader, name) : nullptr;
    if (found == nullptr) throw std::runtime_error(std::string("the design loader lacks ") + name);
    return found;
}

int live(const char* what) { return host().board().live(what); }

std::array<long, 5> held() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return {std::distance(begin(files), end(files)), live("boards"), live("designs"), live("handles"),
            live("strings")};
}

namespace {

template <typename Word> Word* processWide(int code) {
    Word* word = nullptr;
    EXPECT_EQ(host().applet().Info(code, 0, 0, &word, nullptr), 0);
    return word;
}

Lines linesOf(std::istream& in) {
    Lines lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

LOOMdevice* lastDevice() { return processWide<LOOMdevice>(4144); }

fpga_design* lastDesign() { return processWide<fpga_design>(4160); }

int directId(const std::string& name) {
    Grabber grabber;
    host().board().log_kinds(grabber.device, VBOARD_RESOLVE);
    const std::string begin = "resolve " + name + " = ";
    for (const std::string& line : grabber.bringUp(1).log())
        if (line.starts_with(begin)) return FG_DIRECT_PARAMETER_BASE + std::stoi(line.substr(begin.size()));
    throw std::runtime_error("not resolved: " + name);
}

std::vector<Register> registers() {
    fpga_design* const design = lastDesign();
    const auto nameOf = designLoader<decltype(TslGetRegisterName)>("TslGetRegisterName");
    const auto idOf = designLoader<decltype(TslGetRegisterByName)>("TslGetRegisterByName");
    const auto bitsOf = designLoader<decltype(TslGetRegisterBitRange)>("TslGetRegisterBitRange");
    const auto directionOf = designLoader<decltype(TslGetRegisterDirection)>("TslGetRegisterDirection");
    const int count = designLoader<decltype(TslGetNrOfRegister)>("TslGetNrOfRegister")(design);
    std::vector<Register> all;
    for (int i = 1; i <= count; ++i) {
        const char* name = nameOf(design, i);
        const int id = idOf(design, name);
        all.push_back({name, id, bitsOf(design, id), directionOf(design, id) != 0});
    }
    return all;
}

Lines linesOf(const std::string& text) {
    std::istringstream in(text);
    return linesOf(in);
}

Lines fileLines(const std::string& path) {
    std::ifstream in(path);
    return linesOf(in);
}

Lines dataLines(const std::string& file) {
    Lines lines = fileLines(std::string(TEST_DATA_DIR) + "/" + file);
    if (lines.empty()) throw std::runtime_error("no listing " + file);
    return lines;
}

std::vector<Lines> dataRows(const std::string& file) {
    std::vector<Lines> rows;
    for (const std::string& line : dataLines(file)) {
        std::istringstream words(line);
        Lines& row = rows.emplace_back();
        for (std::string word; words >> word;)
            row.push_back(word);
    }
    return rows;
}

Sections startUpSections() {
    Sections sections;
    for (const std::string& line : dataLines("start_up_writes.txt")) {
        if (line.starts_with("# "))
            sections.push_back({line.substr(2), {}});
        else
            sections.back().second.push_back(line);
    }
    return sections;
}

Grabber::Grabber() : device(host().board().open()) {}

Grabber::~Grabber() {
    if (handle.object != nullptr) free();
    host().board().close(device);
}

Grabber& Grabber::bringUp(int flags) {
    handle.object = host().applet().Std_entry(device, &error, flags);
    host().board().attach_applet(device, fg(), host().applet().Fg_saveConfig, host().applet().Fg_loadConfig);
    return *this;
}

int Grabber::free() { return host().applet().Fg_FreeGrabber(fg()); }

int Grabber::setByName(const std::string& name, const std::string& value) {
    const auto& applet = host().applet();
    const int id = applet.Fg_getParameterIdByName(fg(), name.c_str());
    if (value.starts_with('\'')) {
        const std::string text = value.substr(1, value.size() - 2);
        return applet.Fg_setParameterWithType(fg(), id, text.c_str(), 0, FG_PARAM_TEXT);
    }
    if (value.find('.') != value.npos) return set(id, std::stod(value));
    return set(id, static_cast<std::uint32_t>(std::stol(value)));
}

Lines Grabber::log() const {
    const auto& board = host().board();
    Lines lines(board.log_size(device));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        char text[8192] = "";
        EXPECT_GT(board.log_line(device, i, text, sizeof text), 0);
        lines[i] = text;
    }
    return lines;
}

void Grabber::poke(const std::string& name, std::int64_t value) {
    EXPECT_EQ(host().board().poke_int(device, name.c_str(), value), VBOARD_OK) << name;
}

Grabber& Grabber::fitRam(std::int64_t address, std::int64_t data, std::int64_t parallelism) {
    poke("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", address);
    poke("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", data);
    poke("Device1_Process0_Buffer_0_LinkPixelSpace_Parallelism", parallelism);
    return *this;
}

void Grabber::fail(const std::string& name, int code) {
    EXPECT_EQ(host().board().fail_name(device, name.c_str(), code), VBOARD_OK) << name;
}

AppletLog::AppletLog(int level) : m_file(-1), m_standardError(dup(STDERR_FILENO)) {
    setenv("VBOARD_LOG_LEVEL", std::to_string(level).c_str(), 1);
    char path[] = "/tmp/applet-log-XXXXXX";
    m_file = mkstemp(path);
    if (m_file < 0 || m_standardError < 0) throw std::runtime_error("no file for log lines");
    unlink(path);
    dup2(m_file, STDERR_FILENO);
}

AppletLog::~AppletLog() {
    dup2(m_standardError, STDERR_FILENO);
    close(m_standardError);
    close(m_file);
    unsetenv("VBOARD_LOG_LEVEL");
}

Lines AppletLog::take() {
    std::string text;
    char block[4096];
    lseek(m_file, 0, SEEK_SET);
    for (ssize_t size; (size = read(m_file, block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(size));
    if (ftruncate(m_file, 0) != 0) throw std::runtime_error("log lines cannot be cleared");
    lseek(m_file, 0, SEEK_SET);
    std::istringstream stream(text);
    return linesOf(stream);
}

std::string AppletLog::line(int level, const std::string& text) {
    return "[" + std::to_string(level) +
           "] vexo.wrapper.Grab_TwinLaneLineColor: thread-id=" + std::to_string(pthread_self()) + "|" + text;
}

void AppletTest::TearDown() {
    board.restore_design();
    for (const std::string& name : m_variables)
        unsetenv(name.c_str());
}

void AppletTest::setVariable(const char* name, const char* value) {
    setenv(name, value, 1);
    m_variables.push_back(name);
}

Lines ParameterTest::logToLastWrite() {
    Lines lines = log();
    while (!lines.empty() && !lines.back().starts_with("set "))
        lines.pop_back();
    return lines;
}

RegisterInfo* ParameterTest::record(int id) {
    RegisterInfo* found = nullptr;
    forEachRecord(tree(), [&](RegisterInfo& record) {
        if (record.id == id) found = &record;
    });
    if (found == nullptr) throw std::runtime_error("no record of parameter " + std::to_string(id));
    return found;
}

std::string ParameterTest::text(int id) {
    char* handed = nullptr;
    EXPECT_EQ(grabber.get(id, &handed, 0, FG_PARAM_ALLOCATED_STRING), FG_OK) << id;
    if (handed == nullptr) return "";
    const std::string copy = handed;
    EXPECT_EQ(applet.Fg_freeParameterStringWithType(grabber.fg(), id, handed, 0, FG_PARAM_ALLOCATED_STRING),
              FG_OK);
    return copy;
}

} // namespace support
