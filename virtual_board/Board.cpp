#include "Board.h"

#include "numbers.h"
#include "vexo/fg_api.h"
#include "virtual_board.h"

#include <algorithm>
#include <cstring>

namespace vboard {
namespace {

int tagOf(Type type) {
    constexpr int tags[] = {FG_PARAM_INT32,  FG_PARAM_UINT32, FG_PARAM_INT64,       FG_PARAM_UINT64,
                            FG_PARAM_DOUBLE, FG_PARAM_TEXT,   FG_PARAM_FIELD_ACCESS};
    return tags[static_cast<std::size_t>(type)];
}

std::uint64_t widthMask(int bits) { return bits < 64 ? (std::uint64_t{1} << bits) - 1 : ~std::uint64_t{0}; }

/** A run of elements in the memory of a caller. */
struct Run {
    std::uint32_t first, count;
    Type type;
    char* elements;
    std::size_t stride; // from one to the next

    void* operator[](std::uint32_t i) const { return elements + i * stride; }
    /** As the log keeps it. */
    std::uint64_t extent() const { return first | std::uint64_t{count} << 32; }
};

/** The run that a record of the tag describes; nothing if the record is no good. */
std::optional<Run> runOf(int tag, const void* record) {
    const auto* bytes = static_cast<const char*>(record);
    if (tag == FG_PARAM_FIELD_INT) {
        FieldParameterInt_s element;
        std::memcpy(&element, bytes, sizeof element);
        // The value stands in the record itself.
        return Run{element.index, 1, Type::u32, const_cast<char*>(bytes), sizeof element};
    }
    FieldParameterAccess access;
    std::memcpy(&access, bytes, sizeof access);
    auto* elements = static_cast<char*>(access.values);
    if (elements == nullptr && access.count > 0) return std::nullopt;
    // Records of single elements: their values come one after the other, whatever index they bear.
    if (access.vtype == FG_PARAM_FIELD_INT)
        return Run{access.index, access.count, Type::u32, elements, sizeof(FieldParameterInt_s)};
    const auto type = typeOfTag(access.vtype);
    if (!type || !isNumber(*type)) return std::nullopt;
    const std::size_t width = *type == Type::i32 || *type == Type::u32 ? 4 : 8;
    return Run{access.index, access.count, *type, elements, width};
}

bool isInside(std::uint32_t first, std::uint32_t count) { return std::uint64_t{first} + count <= fieldSize; }

std::size_t place(int row) { return static_cast<std::size_t>(row); }

} // namespace

Board::Board() : m_kinds(VBOARD_SET | VBOARD_GET | VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ) {
    putStartValues();
}

void Board::release() {
    if (--m_holders == 0) delete static_cast<LOOMdevice*>(this);
}

void Board::putStartValues() {
    const auto rows = parameterRows();
    m_numbers.assign(rows.size(), 0);
    m_texts.assign(rows.size(), {});
    m_fields.assign(rows.size(), {});
    m_afterRead.clear();
    m_failingParameters.assign(rows.size(), 0);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        m_numbers[row] = rows[row].start;
        m_texts[row] = rows[row].text;
    }
    m_registers.clear();
    for (const RegisterRow& row : registerRows())
        m_registers.push_back(row.start);
    m_failingRegisters.assign(m_registers.size(), 0);
}

// The road of an access.

Board::AccessLock::AccessLock(Board& board, int kind) : m_held(board.m_mutex) {
    board.m_mutex.lock();
    if (board.m_watcher.function == nullptr || (board.m_kinds & static_cast<unsigned>(kind)) == 0) return;
    const Watcher watcher = board.m_watcher;
    board.m_mutex.unlock(); // the host may do what it likes, even end its thread
    watcher.function(watcher.context);
    board.m_mutex.lock();
}

Board::AccessLock::~AccessLock() { m_held.unlock(); }

Access Board::beginAccess(int kind, const Design& design, int id, int tag) const {
    int row = rowOfId(id);
    if (row >= 0 && !design.has(row)) row = -1;
    if (tag == 0 && row >= 0) tag = tagOf(parameterRows()[place(row)].type);
    return {
        .kind = static_cast<std::uint8_t>(kind), .row = static_cast<std::int16_t>(row), .tag = tag, .id = id};
}

Access Board::beginRegister(int kind, int id) const {
    const int row = findRegister(id);
    const bool isWide = row < 0 || registerRows()[place(row)].bits > 32;
    return {.kind = static_cast<std::uint8_t>(kind),
            .row = static_cast<std::int16_t>(row),
            .tag = isWide ? FG_PARAM_UINT64 : FG_PARAM_UINT32,
            .id = id};
}

int Board::faultOf(const Access& access) {
    if ((m_kinds & access.kind) != 0) {
        ++m_accessCount;
        const bool isDue =
            m_failFromThenOn ? m_accessCount >= m_failingAccess : m_accessCount == m_failingAccess;
        if (m_failingAccess != 0 && isDue) return m_failingCode;
    }
    if (access.row < 0) return 0;
    if ((access.kind & (VBOARD_SET | VBOARD_GET)) != 0) return m_failingParameters[place(access.row)];
    if ((access.kind & (VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ)) != 0)
        return m_failingRegisters[place(access.row)];
    return 0;
}

int Board::finish(Access access, int code, const char* text) {
    if (code < 0) m_lastError = code;
    if ((m_kinds & access.kind) == 0) return code;
    access.code = code;
    if (text != nullptr)
        m_log.add(access, text);
    else
        m_log.add(access);
    return code;
}

int Board::set(const Design& design, int id, const void* value, int dma, int tag) {
    const AccessLock lock(*this, VBOARD_SET);
    Access access = beginAccess(VBOARD_SET, design, id, tag);
    const auto type = typeOfTag(access.tag);
    const char* text = nullptr;
    // A failed set shows its value too.
    if (value != nullptr && type == Type::text) {
        text = static_cast<const char*>(value);
    } else if (value != nullptr && type == Type::field) {
        if (const auto run = runOf(access.tag, value)) {
            access.content = Access::run;
            access.value = run->extent();
        }
    } else if (value != nullptr && type) {
        access.content = Access::number;
        access.value = loadNumber(*type, value);
    }

    int code = faultOf(access);
    if (code == 0 && (access.row < 0 || value == nullptr || dma != 0)) code = FG_ERR_INVALID_ARGUMENT;
    if (code == 0) code = store(access, value);
    return finish(access, code, text);
}

int Board::store(const Access& access, const void* value) {
    const ParameterRow& row = parameterRows()[place(access.row)];
    const auto type = typeOfTag(access.tag);
    if (!row.writable) return FG_ERR_NOT_AVAILABLE;
    if (!type || (isNumber(row.type) ? !isNumber(*type) : *type != row.type)) return FG_ERR_INVALID_ARGUMENT;
    if (row.type == Type::field) return storeField(access, value);
    if (row.type == Type::text)
        m_texts[place(access.row)] = static_cast<const char*>(value);
    else
        m_numbers[place(access.row)] = converted(*type, access.value, row.type);
    return FG_OK;
}

int Board::get(const Design& design, int id, void* value, int dma, int tag) {
    const AccessLock lock(*this, VBOARD_GET);
    Access access = beginAccess(VBOARD_GET, design, id, tag);
    const char* text = nullptr;
    int code = faultOf(access);
    if (code == 0 && (access.row < 0 || value == nullptr || dma != 0)) code = FG_ERR_INVALID_ARGUMENT;
    if (code == 0) code = fetch(access, value, text);
    return finish(access, code, text);
}

int Board::fetch(Access& access, void* value, const char*& text) {
    const std::size_t at = place(access.row);
    const ParameterRow& row = parameterRows()[at];
    const bool isHandedOut = access.tag == FG_PARAM_ALLOCATED_STRING;
    const auto type = isHandedOut ? Type::text : typeOfTag(access.tag);
    if (!type || (isNumber(row.type) ? !isNumber(*type) : *type != row.type)) return FG_ERR_INVALID_ARGUMENT;
    if (row.type == Type::field) return fetchField(access, value);
    if (row.type == Type::text) {
        text = m_texts[at].c_str();
        const std::size_t size = m_texts[at].size() + 1;
        char* destination = isHandedOut ? new char[size] : static_cast<char*>(value);
        std::memcpy(destination, text, size);
        if (isHandedOut) std::memcpy(value, &destination, sizeof destination);
        return FG_OK;
    }
    access.content = Access::number;
    access.value = converted(row.type, m_numbers[at], *type);
    storeNumber(*type, access.value, value);
    if (row.clearedByReading) m_numbers[at] = 0;
    if (const auto next = m_afterRead.extract(at)) m_numbers[at] = next.mapped();
    return FG_OK;
}

std::vector<std::uint32_t>& Board::fieldOf(std::size_t row) {
    if (m_fields[row].empty()) m_fields[row].resize(fieldSize);
    return m_fields[row];
}

int Board::storeField(const Access& access, const void* value) {
    const auto run = runOf(access.tag, value);
    if (!run || !isInside(run->first, run->count)) return FG_ERR_INVALID_ARGUMENT;
    auto& elements = fieldOf(place(access.row));
    for (std::uint32_t i = 0; i < run->count; ++i)
        elements[run->first + i] =
            static_cast<std::uint32_t>(converted(run->type, loadNumber(run->type, (*run)[i]), Type::u32));
    return FG_OK;
}

int Board::fetchField(Access& access, void* value) {
    const auto run = runOf(access.tag, value);
    if (!run || !isInside(run->first, run->count)) return FG_ERR_INVALID_ARGUMENT;
    access.content = Access::run;
    access.value = run->extent();
    const auto& elements = m_fields[place(access.row)];
    for (std::uint32_t i = 0; i < run->count; ++i) {
        const std::uint32_t element = elements.empty() ? 0 : elements[run->first + i];
        storeNumber(run->type, converted(Type::u32, element, run->type), (*run)[i]);
    }
    return FG_OK;
}

int Board::resolve(const Design& design, const char* name) {
    const AccessLock lock(*this, VBOARD_RESOLVE);
    Access access{.kind = VBOARD_RESOLVE};
    access.id = faultOf(access);
    if (access.id == 0 && name != nullptr) {
        const int row = design.find(name);
        // The runtime's own parameters have no name here.
        if (row >= 0 && parameterRows()[place(row)].number == 0) access.id = idOfRow(row);
    }
    finish(access, FG_OK, name != nullptr ? name : "");
    return access.id;
}

int Board::lastError() {
    return static_cast<int>(call(entry("Fg_getLastErrorNumber"),
                                 [this]() REQUIRES(m_mutex) { return m_forcedError.value_or(m_lastError); }));
}

std::int64_t Board::call(int function, const std::function<std::int64_t()>& perform) {
    const AccessLock lock(*this, VBOARD_CALL);
    const Access access{.kind = VBOARD_CALL, .row = static_cast<std::int16_t>(function)};
    if (const int fault = faultOf(access)) return finish(access, fault);
    const auto& forced = m_answers[place(function)];
    const std::int64_t answer = forced ? *forced : perform();
    // The last error is no failure of the question for it.
    const bool isFailure = answer < 0 && function != entry("Fg_getLastErrorNumber");
    finish(access, isFailure ? static_cast<int>(answer) : FG_OK);
    return answer;
}

int Board::configure(int function, vboard_config_function* AttachedApplet::*which, const char* file) {
    AttachedApplet applet;
    const auto answer = static_cast<int>(call(function, [&]() REQUIRES(m_mutex) -> std::int64_t {
        applet = m_applet;
        return applet.*which != nullptr ? FG_OK : FG_ERR_NOT_SUPPORTED;
    }));
    return applet.*which != nullptr ? (applet.*which)(applet.fg, file) : answer;
}

int Board::readRegister(int id, std::uint64_t* value) {
    const AccessLock lock(*this, VBOARD_REGISTER_READ);
    Access access = beginRegister(VBOARD_REGISTER_READ, id);
    if (const int fault = faultOf(access)) return finish(access, fault);
    if (access.row < 0 || value == nullptr) return finish(access, FG_ERR_INVALID_ARGUMENT);
    access.content = Access::number;
    access.value = *value = m_registers[place(access.row)];
    return finish(access, FG_OK);
}

int Board::writeRegister(int id, std::uint64_t value) {
    const AccessLock lock(*this, VBOARD_REGISTER_WRITE);
    Access access = beginRegister(VBOARD_REGISTER_WRITE, id);
    access.content = Access::number;
    access.value = value;
    if (const int fault = faultOf(access)) return finish(access, fault);
    if (access.row < 0) return finish(access, FG_ERR_INVALID_ARGUMENT);
    const RegisterRow& row = registerRows()[place(access.row)];
    if (!row.writable) return finish(access, FG_ERR_NOT_AVAILABLE);
    m_registers[place(access.row)] = value & widthMask(row.bits);
    return finish(access, FG_OK);
}

// The acquisition.

void Board::changeAcquisition(bool running) {
    static const int status = findParameter("FG_DMASTATUS");
    m_acquiring = running;
    m_numbers[place(status)] = running ? 1 : 0;
}

int Board::startAcquisition(int dma, std::int64_t pictures) {
    if (dma != 0) return FG_ERR_INVALID_ARGUMENT;
    m_picture = 0;
    m_pictures = std::max(pictures, std::int64_t{0});
    changeAcquisition(true);
    return FG_OK;
}

int Board::stopAcquisition(int dma) {
    if (dma != 0) return FG_ERR_INVALID_ARGUMENT;
    changeAcquisition(false);
    return FG_OK;
}

std::int64_t Board::nextPicture() {
    if (m_acquiring && (m_pictures == 0 || m_picture < m_pictures)) ++m_picture;
    return m_picture;
}

std::int64_t Board::waitForPicture(std::int64_t picture) {
    if (picture <= m_picture) return m_picture;
    const bool comes = m_acquiring && (m_pictures == 0 || picture <= m_pictures);
    if (!comes) return FG_ERR_NOT_AVAILABLE;
    return m_picture = picture;
}

std::int64_t Board::takeEvents(const Design& design, std::uint64_t mask) {
    std::int64_t times = 0;
    for (int index = 0; index < 64; ++index) {
        const TslEvent* event = design.event(index);
        if (event == nullptr) break;
        const auto raised = m_raisedEvents.find(event->name);
        if ((mask >> index & 1) == 0 || raised == m_raisedEvents.end()) continue;
        times += raised->second;
        m_raisedEvents.erase(raised);
    }
    return times;
}

// Control.

void Board::reset() {
    const MutexLock lock(m_mutex);
    putStartValues();
    m_log.clear();
    m_accessCount = m_failingAccess = 0;
    m_watcher = {};
    m_answers.fill(std::nullopt);
    m_forcedError.reset();
    m_lastError = 0;
    m_acquiring = false;
    m_picture = m_pictures = 0;
    m_raisedEvents.clear();
}

void Board::setLogKinds(unsigned mask) {
    const MutexLock lock(m_mutex);
    m_kinds = mask;
}

std::size_t Board::logSize() {
    const MutexLock lock(m_mutex);
    return m_log.size();
}

std::optional<std::string> Board::logLine(std::size_t index) {
    const MutexLock lock(m_mutex);
    if (index >= m_log.size()) return std::nullopt;
    return m_log.line(index);
}

void Board::clearLog() {
    const MutexLock lock(m_mutex);
    m_log.clear();
}

void Board::failAccess(unsigned k, int code, bool fromThenOn) {
    const MutexLock lock(m_mutex);
    m_accessCount = 0;
    m_failingAccess = k;
    m_failingCode = code;
    m_failFromThenOn = fromThenOn;
}

unsigned Board::accessCount() {
    const MutexLock lock(m_mutex);
    return m_accessCount;
}

bool Board::failName(std::string_view name, int code) {
    const MutexLock lock(m_mutex);
    if (const int row = findParameter(name); row >= 0) {
        m_failingParameters[place(row)] = code;
        return true;
    }
    if (const int row = findRegister(name); row >= 0) {
        m_failingRegisters[place(row)] = code;
        return true;
    }
    return false;
}

void Board::setWatcher(const Watcher& watcher) {
    const MutexLock lock(m_mutex);
    m_watcher = watcher;
}

void Board::setAnswer(int function, std::int64_t value) {
    const MutexLock lock(m_mutex);
    m_answers[place(function)] = value;
}

void Board::attachApplet(const AttachedApplet& applet) {
    const MutexLock lock(m_mutex);
    m_applet = applet;
}

void Board::setLastError(int code) {
    const MutexLock lock(m_mutex);
    m_forcedError = code;
}

std::uint64_t* Board::numberCalled(std::string_view name, Type& type) {
    if (const int row = findParameter(name); row >= 0) {
        type = parameterRows()[place(row)].type;
        return isNumber(type) ? &m_numbers[place(row)] : nullptr;
    }
    type = Type::u64;
    const int row = findRegister(name);
    return row >= 0 ? &m_registers[place(row)] : nullptr;
}

bool Board::poke(std::string_view name, Type type, std::uint64_t bits) {
    const MutexLock lock(m_mutex);
    Type own;
    std::uint64_t* number = numberCalled(name, own);
    if (number == nullptr) return false;
    *number = converted(type, bits, own);
    if (const int row = findRegister(name); row >= 0) *number &= widthMask(registerRows()[place(row)].bits);
    return true;
}

bool Board::peek(std::string_view name, Type type, std::uint64_t& bits) {
    const MutexLock lock(m_mutex);
    Type own;
    const std::uint64_t* number = numberCalled(name, own);
    if (number == nullptr) return false;
    bits = converted(own, *number, type);
    return true;
}

bool Board::raiseEvent(const char* name) {
    if (!isEvent(name)) return false;
    const MutexLock lock(m_mutex);
    ++m_raisedEvents[name];
    return true;
}

bool Board::pokeAfterRead(std::string_view name, std::uint64_t number) {
    const int row = findParameter(name);
    if (row < 0 || !isNumber(parameterRows()[place(row)].type)) return false;
    const MutexLock lock(m_mutex);
    m_afterRead[place(row)] = converted(Type::i64, number, parameterRows()[place(row)].type);
    return true;
}

bool Board::pokeText(std::string_view name, const char* text) {
    const int row = findParameter(name);
    if (row < 0 || parameterRows()[place(row)].type != Type::text) return false;
    const MutexLock lock(m_mutex);
    m_texts[place(row)] = text;
    return true;
}

bool Board::peekField(std::string_view name, std::uint32_t first, std::uint32_t count,
                      std::uint32_t* values) {
    const int row = findParameter(name);
    if (row < 0 || parameterRows()[place(row)].type != Type::field || !isInside(first, count)) return false;
    const MutexLock lock(m_mutex);
    std::copy_n(fieldOf(place(row)).begin() + first, count, values);
    return true;
}

std::uint64_t Board::number(int row) { return m_numbers[place(row)]; }

std::string Board::text(int row) { return m_texts[place(row)]; }

} // namespace vboard
