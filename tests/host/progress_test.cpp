#if !defined(_WIN32)

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>

#include "zrvDX320/zrvDX320.h"

namespace {

void* OpenWindow(const char* text = "Reading input file") {
    const char* const lines[] = {text};
    return create_info_ext(lines, 1, text, "End");
}

// Standard error is a terminal of so many columns while it lives.
class Terminal {
  public:
    explicit Terminal(unsigned short columns) {
        winsize size = {25, columns, 0, 0};
        EXPECT_EQ(openpty(&master, &slave, nullptr, nullptr, &size), 0);
        fcntl(master, F_SETFL, O_NONBLOCK);
        kept = dup(STDERR_FILENO);
        dup2(slave, STDERR_FILENO);
    }
    ~Terminal() {
        dup2(kept, STDERR_FILENO);
        for (const int descriptor : {kept, slave, master}) close(descriptor);
    }

    std::string Written() const {
        char text[4096];
        const ssize_t count = read(master, text, sizeof text);
        return std::string(text, count > 0 ? static_cast<size_t>(count) : 0);
    }

  private:
    int master = -1;
    int slave = -1;
    int kept = -1;
};

TEST(ProgressTest, DrawsABarOnATerminal) {
    const Terminal terminal(80);
    void* window = OpenWindow();
    EXPECT_EQ(terminal.Written(), "");
    EXPECT_EQ(draw_info(window, 100, 25, 0), 0);
    EXPECT_EQ(terminal.Written(),
              "\rReading input file [" + std::string(10, '#') + std::string(30, '-') + "]  25 %");
    EXPECT_EQ(draw_info(window, 200, 500, 0), 0);
    EXPECT_EQ(terminal.Written(), "\rReading input file [" + std::string(40, '#') + "] 100 %");
    EXPECT_EQ(draw_info(window, 0, 0, 0), 0);
    EXPECT_EQ(terminal.Written(), "");
    close_info(window);
    EXPECT_EQ(terminal.Written(), "\r" + std::string(67, ' ') + "\r");
}

TEST(ProgressTest, FitsItsTerminal) {
    for (const int columns : {5, 10, 27, 28, 29, 30, 40, 69, 70, 200}) {
        const Terminal terminal(static_cast<unsigned short>(columns));
        void* window = OpenWindow("\xC8ten\xED vstupn\xEDho");
        draw_info(window, 100, 50, 0);
        const std::string line = terminal.Written();
        EXPECT_NE(line.find(" 50 %"), std::string::npos);
        EXPECT_EQ(line.find("\xC4\x8Cten\xC3\xAD") != std::string::npos, columns > 25) << columns;
        const auto width =
            std::count_if(line.begin() + 1, line.end(), [](char unit) { return (unit & 0xC0) != 0x80; });
        EXPECT_LE(width, std::max(5, columns - 1)) << columns;
        close_info(window);
    }
}

TEST(ProgressTest, IsSilentWithoutATerminalOrWhenHidden) {
    testing::internal::CaptureStderr();
    void* window = OpenWindow();
    draw_info(window, 100, 50, 0);
    close_info(window);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    const Terminal terminal(80);
    InfoSetVisible(0);
    window = OpenWindow();
    draw_info(window, 100, 50, 0);
    close_info(window);
    EXPECT_EQ(terminal.Written(), "");
    InfoSetVisible(1);
}

int interruptsOfTheHost = 0;

TEST(ProgressTest, AnInterruptIsARequestToStop) {
    auto* before = std::signal(SIGINT, [](int) { ++interruptsOfTheHost; });
    EXPECT_EQ(InfoStopRequested(), 0);
    void* outer = OpenWindow();
    void* inner = OpenWindow(nullptr);
    EXPECT_EQ(draw_info(outer, 100, 1, 0), 0);
    std::raise(SIGINT);
    EXPECT_NE(draw_info(inner, 100, 1, 0), 0);
    close_info(inner);
    std::raise(SIGINT);
    EXPECT_NE(draw_info(outer, 100, 2, 0), 0);
    close_info(outer);
    EXPECT_EQ(interruptsOfTheHost, 0);
    std::raise(SIGINT);
    EXPECT_EQ(interruptsOfTheHost, 1) << "the host's own handler is back";

    EXPECT_NE(InfoStopRequested(), 0);
    void* next = OpenWindow();
    EXPECT_EQ(draw_info(next, 100, 1, 0), 0) << "the next window's work was not stopped";
    close_info(next);
    InfoResetStop();
    EXPECT_EQ(InfoStopRequested(), 0);

    std::signal(SIGINT, SIG_IGN);
    next = OpenWindow();
    std::raise(SIGINT);
    EXPECT_EQ(draw_info(next, 100, 1, 0), 0) << "who ignores interrupts goes on doing so";
    close_info(next);
    std::signal(SIGINT, before);
}

TEST(ProgressTest, NoWindowIsNoFailure) {
    EXPECT_EQ(draw_info(nullptr, 100, 1, 0), 0);
    close_info(nullptr);
}

}  // namespace

#endif
