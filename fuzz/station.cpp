// The input is a list of calls of the station of a board: writes, waves, waits, pictures, with valid and
// invalid arguments. A call is one byte for the function, then its arguments. No call may fail, block or
// write out of bounds, and the same list on another board must give the same results.

#include "invariants.h"
#include "station/Board.h"
#include "vexo/design_loader.h"
#include "vexo/fg_errors.h"
#include "virtual_board/libraries/runtime.h"
#include "virtual_board/virtual_board.h"

#include <array>
#include <limits>

namespace {

using fuzz::Input;
using fuzz::require;
namespace runtime = vboard::runtime;

constexpr std::size_t mostCalls = 1000;
constexpr std::uint64_t mostTicks = 4'000'000; // of all calls

class Calls {
public:
    explicit Calls(Input input) : m_input(input) {}
    ~Calls() {
        for (vboard_frames* memory : m_memories)
            vboard_memory_free(memory);
        runtime::freeGrabber(m_fg);
        TslUnloadTslFile(m_design);
        vboard_close(m_board);
    }
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    /** All results; empty if they may differ in the next run. */
    std::string run() {
        for (std::size_t i = 0; i < mostCalls && !m_input.isEmpty() && vboard_now(m_board) < mostTicks; ++i)
            (this->*functions[m_input.byte() % std::size(functions)])();
        return m_followsClock ? "" : m_answers;
    }

private:
    void note(std::int64_t answer) { m_answers += std::to_string(answer) + ' '; }
    std::uint64_t small() { return m_input.byte() << m_input.byte() % 8; }
    std::uint64_t tick() { return m_input.byte() % 8 != 0 ? vboard_now(m_board) + small() : m_input.word(); }
    LOOMdevice* board() { return m_input.byte() % 64 != 0 ? m_board : nullptr; }
    vboard_frames* memory() { return m_memories[m_input.byte() % m_memories.size()]; }
    const char* parameter() {
        return nameOf(static_cast<station::Parameter>(m_input.byte() % station::parameterCount));
    }

    void write() {
        using Limits = std::numeric_limits<double>;
        constexpr double values[] = {-1,
                                     0.5,
                                     1398101,
                                     4294967295.0,
                                     1e300,
                                     -Limits::infinity(),
                                     Limits::infinity(),
                                     Limits::quiet_NaN()};
        const char* name = parameter();
        const unsigned choice = m_input.byte();
        const double value = choice < 8 ? values[choice] : static_cast<double>(small());
        note(choice % 16 == 15
                 ? vboard_poke_double(m_board, name, value)
                 : runtime::setParameterWithType(m_fg, runtime::getParameterIdByName(m_fg, name), &value, 0,
                                                 FG_PARAM_DOUBLE));
    }
    void read() {
        double value = 0;
        note(vboard_peek_double(m_board, parameter(), &value));
        note(static_cast<std::int64_t>(value == value ? std::clamp(value, -1e9, 1e9) : 7));
        note(runtime::getStatusEx(m_fg, static_cast<int>(1000 + m_input.byte() % 10), -1, 0, nullptr));
    }
    // The input is read in separate statements, since the order of evaluation of arguments is unspecified.
    void advance() {
        LOOMdevice* const any = board();
        const std::uint64_t ticks = small();
        note(static_cast<std::int64_t>(vboard_advance(any, ticks * (1 + small() % 64))));
    }
    void connect() {
        LOOMdevice* const any = board();
        const unsigned input = m_input.byte() % 14, kind = m_input.byte() % 8;
        if (kind == 0) return note(vboard_wave_level(any, input, m_input.byte() % 2 != 0));
        if (kind < 3) {
            const std::uint64_t rise = tick(), period = tick();
            return note(vboard_wave_square(any, input, rise, period, small()));
        }
        const std::size_t count = m_input.byte() % 8;
        if (kind < 5) {
            std::vector<vboard_edge> edges(count); // of exactly this size
            for (vboard_edge& edge : edges)
                edge = {tick(), m_input.byte() % 2 != 0};
            return note(vboard_wave_edges(any, input, false, edges.data(), count));
        }
        const auto speed = [&] {
            const auto bits = static_cast<std::int32_t>(m_input.word());
            return bits >> (8 + m_input.byte() % 24); // mostly within the limits
        };
        std::vector<vboard_speed> pieces(count);
        for (vboard_speed& piece : pieces)
            piece = {tick(), speed(), speed()};
        note(vboard_wave_encoder(any, input, m_input.byte() % 14, pieces.data(), count));
    }
    void takeMemory() {
        vboard_frames*& slot = m_memories[m_input.byte() % m_memories.size()];
        vboard_memory_free(slot);
        LOOMdevice* const any = board();
        const std::uint64_t frames = small(), bytes = small();
        slot = vboard_memory(any, frames, bytes * small(), static_cast<int>(frames % 3));
        note(slot != nullptr);
    }
    void acquire() {
        const unsigned choice = m_input.byte();
        if (choice % 8 == 0) return note(runtime::stopAcquireEx(m_fg, choice == 64, nullptr, 0));
        void* const wrong = choice % 8 == 1 ? this : nullptr;
        void* const into = choice % 8 < 3 ? wrong : memory();
        note(runtime::acquireEx(m_fg, choice == 255, m_input.byte() % 32, 0, into));
    }
    void wait() {
        const int seconds = -static_cast<int>(m_input.byte() % 2); // waiting for a simulated second is slow
        note(runtime::getLastPicNumberBlockingEx(m_fg, m_input.byte() % 32, 0, seconds, nullptr));
        note(runtime::getLastPicNumberEx(m_fg, 0, nullptr));
    }
    void picture() {
        vboard_frames* from = memory();
        const std::int64_t number = static_cast<std::int64_t>(m_input.byte()) - 1;
        if (m_input.byte() % 4 == 0) return note(vboard_release(from, number));
        vboard_record record{};
        const int code = vboard_frame(from, number, m_input.byte() == 0 ? nullptr : &record);
        note(code);
        if (code != VBOARD_OK) return;
        require(record.size == std::uint64_t{record.bytes_per_line} * record.lines,
                "a picture has its lines");
        m_answers.append(reinterpret_cast<const char*>(record.data), record.size);
        for (const std::uint64_t tick : {record.first_line, record.last_line, record.arrival})
            note(static_cast<std::int64_t>(tick));
    }
    void inject() {
        constexpr std::uint32_t sizes[] = {0, 1, 2, 3, 5, 64, 16384, 16385, 65537, ~0U};
        const int point = static_cast<int>(m_input.byte() % 5) - 1;
        const std::uint32_t width = sizes[m_input.byte() % std::size(sizes)];
        const std::uint32_t height = sizes[m_input.byte() % (width > 64 ? 2 : 6)];
        std::vector<std::uint16_t> components;
        if (width <= 16384)
            components.assign(std::size_t{3} * width * height, static_cast<std::uint16_t>(small()));
        note(vboard_inject(m_board, point, width, height, components.data()));
    }
    void look() {
        vboard_event event{};
        for (std::size_t i = m_input.byte(); i > 0 && vboard_next_event(board(), &event) == VBOARD_OK; --i)
            m_answers += event.name;
        std::vector<vboard_edge> edges(small() % 512);
        const unsigned select = m_input.byte() % 40;
        const std::uint64_t from = tick(), to = tick();
        bool level = false;
        note(vboard_signals(m_board, select, from, to, edges.data(), edges.size(), &level));
        for (const vboard_edge& edge : edges)
            note(static_cast<std::int64_t>(edge.tick << 1 | std::uint64_t{edge.level}));
    }
    void steer() {
        const unsigned choice = m_input.byte();
        if (choice < 16) vboard_reset(m_board);
        if (choice >= 16 && choice < 128) vboard_dma_rate(m_board, small() * small());
        if (choice >= 128 && choice < 250) return setUp(choice);
        if (choice < 250) return;
        const double factors[] = {0.001, 0, -1}; // slow, because of the sanitizers
        m_followsClock |= vboard_clock(board(), factors[choice % 3]) == VBOARD_OK && choice % 3 == 0;
    }

    /** Camera, belt or scene, with values within and beyond their limits. */
    void setUp(unsigned choice) {
        LOOMdevice* const any = board();
        if (choice % 8 == 0) return note(vboard_camera_detach(any));
        if (choice % 3 == 0) {
            vboard_camera camera{};
            camera.width = static_cast<std::uint32_t>(small());
            camera.line_rate = static_cast<std::uint32_t>(small() % 4 == 0 ? small() * small() : 0);
            camera.exposure = static_cast<std::uint32_t>(small());
            vboard_camera_faults faults{};
            for (std::uint8_t& colour : faults.order)
                colour = static_cast<std::uint8_t>(m_input.byte() % 4);
            faults.drop_every = m_input.byte();
            faults.short_every = m_input.byte();
            faults.short_width = static_cast<std::uint32_t>(small());
            faults.lost_after = small();
            faults.lost_for = small();
            return note(vboard_camera_attach(any, &camera, m_input.byte() % 4 != 0 ? nullptr : &faults));
        }
        if (choice % 3 == 1) {
            const auto speed = [&] {
                return static_cast<std::int32_t>(m_input.word() >> m_input.byte() % 48);
            };
            std::vector<vboard_speed> pieces(m_input.byte() % 4);
            for (vboard_speed& piece : pieces)
                piece = {tick(), speed(), speed()};
            vboard_belt_setup belt{};
            belt.pieces = pieces.data();
            belt.count = pieces.size();
            belt.encoder_a = m_input.byte() % 14;
            belt.encoder_b = m_input.byte() % 4 != 0 ? m_input.byte() % 14 : VBOARD_NO_INPUT;
            belt.encoder_step = static_cast<std::uint32_t>(m_input.word() >> m_input.byte() % 64);
            belt.barrier = m_input.byte() % 2 != 0 ? m_input.byte() % 14 : VBOARD_NO_INPUT;
            belt.barrier_ahead = static_cast<std::int64_t>(m_input.word()) >> m_input.byte() % 64;
            return note(vboard_belt(any, &belt));
        }
        vboard_scene_setup scene{};
        scene.pixel = static_cast<std::uint32_t>(small());
        scene.noise = static_cast<std::uint32_t>(small() * 8);
        scene.seed = m_input.byte();
        scene.width = m_input.byte() % 8;
        scene.height = m_input.byte() % 8;
        const std::vector<std::uint16_t> image(std::size_t{3} * scene.width * scene.height, 0x1234);
        scene.components = m_input.byte() % 2 != 0 ? image.data() : nullptr;
        std::vector<vboard_object> objects(m_input.byte() % 4);
        for (vboard_object& object : objects) {
            object.place = static_cast<std::int64_t>(m_input.word()) >> m_input.byte() % 64;
            object.length = static_cast<std::int64_t>(m_input.word()) >> m_input.byte() % 64;
        }
        scene.objects = objects.data();
        scene.object_count = objects.size();
        note(vboard_scene(any, &scene));
    }

    using Function = void (Calls::*)();
    static constexpr Function functions[] = {
        &Calls::write,   &Calls::write,   &Calls::write,      &Calls::write,   &Calls::advance,
        &Calls::advance, &Calls::connect, &Calls::read,       &Calls::wait,    &Calls::picture,
        &Calls::inject,  &Calls::look,    &Calls::takeMemory, &Calls::acquire, &Calls::steer};

    Input m_input;
    std::string m_answers;
    bool m_followsClock = false;
    LOOMdevice* m_board = vboard_open();
    fpga_design* m_design = TslLoadDesignFromBuffer("image", 5, 1);
    Fg_Struct* m_fg = runtime::initHandle("any.tsl", m_board, m_design);
    std::array<vboard_frames*, 3> m_memories{};
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string answers = Calls({data, size}).run();
    const std::string again = Calls({data, size}).run();
    require(answers == again, "the same calls have the same answers");
    for (const char* what : {"boards", "handles", "designs"})
        require(vboard_live(what) == 0, "nothing is left behind");
    return 0;
}
