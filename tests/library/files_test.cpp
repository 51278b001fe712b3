// Files named by a caller: large files made to be slow to read, and paths that are not regular files, for
// configurations and for lookup tables.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace support;
using namespace std::string_literals;
namespace fs = std::filesystem;

/**
 * The duration of calls of this thread, independent of the machine's load: seconds of work, and seconds
 * asleep. Time spent waiting for a processor does not count.
 */
class Effort {
public:
    /** The duration of a call; fails if it works or sleeps longer than a second. */
    template <typename Call> static auto of(Call call) {
        const Seconds before = now();
        const auto result = call();
        const Seconds after = now();
        const double work = after.work - before.work;
        EXPECT_LT(work, slowdown) << "seconds of work";
        EXPECT_LT(after.wall - before.wall - (after.wait - before.wait) - work, slowdown) << "seconds asleep";
        return result;
    }

private:
    static constexpr double slowdown = underAddressSanitizer || underThreadSanitizer ? 10 : 1;
    struct Seconds {
        double wall, work, wait; // the last: waiting for a processor
    };
    static double read(clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }
    static Seconds now() {
        double run = 0, wait = 0; // nanoseconds
        std::ifstream("/proc/thread-self/schedstat") >> run >> wait;
        return {read(CLOCK_MONOTONIC), read(CLOCK_THREAD_CPUTIME_ID), wait / 1e9};
    }
};

class FilesTest : public ParameterTest {
protected:
    int load(const std::string& path) { return applet.Fg_loadConfig(grabber.fg(), path.c_str()); }
    int save(const std::string& path) { return applet.Fg_saveConfig(grabber.fg(), path.c_str()); }
    int loadTables(const std::string& path) { return setText(FG_LUT_CUSTOM_FILE, path); }
    int saveTables(const std::string& path) { return setText(FG_LUT_SAVE_FILE, path); }

    const TemporaryFolder folder;
};

TEST_F(FilesTest, LargeFilesAreReadQuickly) {
    constexpr std::size_t size = 100000;
    const std::string header =
        "[Kamerasektion]\nTyp='Grab_TwinLaneLineColor';\nAktivePort=0;\nHersteller=1;\n";
    const std::string port = header + "[Port A]\n", table = "nrOfElements=16384;\n[red][green][blue]\n";
    const std::string path = folder / "large.mcf", sound = folder / "sound.mcf";
    ASSERT_EQ(save(sound), FG_OK);
    setAll({{FG_LUT_TYPE, 0}});
    for (const std::string& front :
         {""s, header, port, table, port + "FG_WIDTH=", port + "FG_LUT_CUSTOM_FILE='",
          port + "FG_LINEEXPOSURE=1e308", "nrOfElements=2147483647;\n[red]\n0,"s}) {
        for (const std::string& piece :
             {"x"s, "\n"s, "\0"s, "9"s, "=;'"s, "id="s, "[Port A]\n"s, "[red]\n0,1;\n"s, "0,1;\n"s,
              "16383,1,"s, "FG_TIMEOUT=1;\n"s, "FG_WIDTH\n"s, "Typ"s, "Hersteller=[Kamerasektion]\n"s}) {
            SCOPED_TRACE(front + piece);
            std::string text = front;
            while (text.size() < size)
                text += piece;
            writeFile(path, text);
            EXPECT_EQ(Effort::of([&] { return load(path); }), FG_ERR_LOAD_CONFIG);
            EXPECT_EQ(Effort::of([&] { return loadTables(path); }), FG_OK);
            if (HasFailure()) return;
        }
    }
    EXPECT_EQ(Effort::of([&] { return load(sound); }), FG_OK);
}

TEST_F(FilesTest, FindsKeysAfterAMillionLines) {
    const std::string path = folder / "long.mcf", sound = folder / "sound.mcf";
    ASSERT_EQ(save(sound), FG_OK);
    std::string text = fileBytes(sound), repeated;
    const std::size_t values = text.find("FG_TIMEOUT=");
    for (int i = 0; i < 1100000; ++i)
        repeated += "FG_WIDTH=512;\n";
    writeFile(path, text.insert(values, repeated));
    EXPECT_EQ(load(path), FG_OK);
    EXPECT_EQ(get<std::uint32_t>(FG_WIDTH), 512u);
}

TEST_F(FilesTest, FifosReceiveDataUntilTheirReaderCloses) {
    const std::string fifo = folder / "fifo.mcf", configuration = folder / "state.mcf",
                      table = folder / "table";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(save(configuration), FG_OK);
    ASSERT_EQ(saveTables(table), FG_OK);
    // A reader that reads `most` bytes and closes.
    const auto readThrough = [&](std::size_t most, auto write) {
        const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
        std::string all;
        std::atomic<bool> isWritten = false;
        std::thread reading([&] {
            bool isOver = false;
            while (all.size() < most && !isOver) {
                isOver = isWritten;
                char piece[4096];
                const ssize_t count = read(reader, piece, std::min(sizeof piece, most));
                if (count > 0) all.append(piece, static_cast<std::size_t>(count));
                isOver = isOver && count <= 0;
            }
            close(reader);
        });
        EXPECT_EQ(write(), FG_OK);
        isWritten = true;
        reading.join();
        return all;
    };
    constexpr std::size_t everything = 1 << 30;
    EXPECT_EQ(readThrough(everything, [&] { return save(fifo); }), fileBytes(configuration));
    EXPECT_TRUE(readThrough(everything, [&] { return saveTables(fifo); }) == fileBytes(table));
    EXPECT_EQ(readThrough(10, [&] { return saveTables(fifo); }), fileBytes(table).substr(0, 10)); // no signal
}

TEST_F(FilesTest, UnusualPaths) {
    const std::string fifo = folder / "fifo.mcf", directory = folder / "folder.mcf",
                      socketPath = folder / "socket.mcf";
    const std::string full = folder / "full.mcf", endless = folder / "zero.mcf", loop = folder / "loop.mcf";
    const std::string otherName = folder / "state.txt", gone = folder / "gone";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    fs::create_directory(directory);
    fs::create_symlink("/dev/full", full);
    fs::create_symlink("/dev/zero", endless);
    fs::create_symlink(loop, loop);
    fs::copy_file(TEST_DATA_DIR "/saved_state.mcf", otherName);
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << socketPath;

    constexpr int noFile = FG_ERR_FILE_TYPE, unread = FG_ERR_LOAD_CONFIG, unwritten = FG_ERR_SAVE_CONFIG;
    const struct {
        std::string path;
        int load, save, loadTables, saveTables;
    } rows[] = {
        {directory, unread, unwritten, FG_OK, unwritten}, // reads as an empty file
        {fifo, noFile, unwritten, noFile, unwritten}, // without the other end, which must not be waited for
        {socketPath, noFile, unwritten, noFile, unwritten},
        {full, unread, FG_OK, FG_OK, FG_OK}, // only the log reports what is lost
        {endless, unread, FG_OK, FG_OK, FG_OK},
        {loop, noFile, unwritten, noFile, unwritten},
        {folder / "none.mcf/a.mcf", noFile, unwritten, noFile, unwritten},
        {"vanished.mcf", noFile, unwritten, noFile, unwritten}, // in a folder that was removed
        {folder / (std::string(5000, 'x') + ".mcf"), noFile, unwritten, noFile, unwritten},
        {"", noFile, unwritten, FG_OK, FG_OK}, // for tables: no file is named
        {otherName, noFile, unwritten, FG_OK, FG_OK},
    };
    setAll({{FG_LUT_TYPE, 0}});
    fs::create_directory(gone);
    const fs::path folderBefore = fs::current_path();
    fs::current_path(gone);
    fs::remove(gone);
    const auto before = held();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path.substr(0, 200));
        clearLog();
        EXPECT_EQ(load(row.path), row.load);
        EXPECT_EQ(lastError(), FG_ERR_LOAD_CONFIG);
        EXPECT_EQ(log(), Lines{});
        EXPECT_EQ(save(row.path), row.save);
        EXPECT_EQ(lastError(), row.save);
        const Lines names = {text(FG_LUT_CUSTOM_FILE), text(FG_LUT_SAVE_FILE)};
        EXPECT_EQ(loadTables(row.path), row.loadTables);
        EXPECT_EQ(lastError(), row.loadTables);
        EXPECT_EQ(saveTables(row.path), row.saveTables);
        EXPECT_EQ(lastError(), row.saveTables);
        EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), row.loadTables == FG_OK ? row.path : names[0]);
        EXPECT_EQ(text(FG_LUT_SAVE_FILE), row.saveTables == FG_OK ? row.path : names[1]);
    }
    EXPECT_EQ(applet.Fg_loadConfig(grabber.fg(), nullptr), noFile);
    EXPECT_EQ(applet.Fg_saveConfig(grabber.fg(), nullptr), unwritten);
    EXPECT_EQ(held(), before);
    fs::current_path(folderBefore);
    close(server);
}

TEST_F(FilesTest, FilesWithoutPermission) {
    const std::string path = folder / "state.mcf";
    ASSERT_EQ(save(path), FG_OK);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    setAll({{FG_LUT_TYPE, 0}});
    const bool isRoot = geteuid() == 0; // root may read anything
    ASSERT_EQ(isRoot ? seteuid(65534) : 0, 0);
    const int results[] = {load(path), save(path), loadTables(path), saveTables(path)};
    ASSERT_EQ(isRoot ? seteuid(0) : 0, 0);
    EXPECT_THAT(results, testing::ElementsAre(FG_ERR_FILE_TYPE, FG_ERR_SAVE_CONFIG, FG_ERR_FILE_TYPE,
                                              FG_ERR_SAVE_CONFIG));
}

} // namespace
