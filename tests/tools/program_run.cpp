#include "program_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vemrado_test {
namespace {

struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) abort();
    }
    void Close(size_t end) {
        if (ends[end] >= 0) close(ends[end]);
        ends[end] = -1;
    }
    ~Pipe() {
        Close(0);
        Close(1);
    }
    std::array<int, 2> ends{};  // for reading, for writing
};

[[noreturn]] void BecomeVkm(const std::vector<std::string>& arguments, const RunSetting& setting,
                            const Pipe& input, const Pipe& output, const Pipe& errors) {
    signal(SIGINT, SIG_DFL);
    dup2(input.ends[0], STDIN_FILENO);
    dup2(setting.outputFile.empty() ? output.ends[1] : open(setting.outputFile.c_str(), O_WRONLY),
         STDOUT_FILENO);
    dup2(errors.ends[1], STDERR_FILENO);
    std::string environment = setting.environment.empty() ? "VEMRADO_COUNTRY=1" : setting.environment;
    putenv(environment.data());
    std::string program = setting.program.empty() ? VKM_PROGRAM : setting.program;
    std::vector<char*> list = {program.data()};
    for (const std::string& argument : arguments) list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    execv(program.c_str(), list.data());
    _exit(127);
}

// Reads what is there; closes the pipe at its end.
void Drain(Pipe& pipe, std::string& bytes) {
    std::array<char, 65536> block{};
    const ssize_t got = read(pipe.ends[0], block.data(), block.size());
    if (got > 0) {
        bytes.append(block.data(), static_cast<size_t>(got));
    } else {
        pipe.Close(0);
    }
}

void Feed(Pipe& pipe, std::string_view& rest, bool closeAtEnd) {
    const ssize_t written = write(pipe.ends[1], rest.data(), rest.size());
    rest.remove_prefix(written > 0 ? static_cast<size_t>(written) : rest.size());
    if (rest.empty() && closeAtEnd) pipe.Close(1);
}

// Interrupts the program once its standard input holds nothing more.
void InterruptWhenRead(pid_t process, int signal, const Pipe& input) {
    for (int waiting = 1; waiting > 0; usleep(10'000)) ioctl(input.ends[0], FIONREAD, &waiting);
    kill(process, signal);
}

void Exchange(pid_t process, const RunSetting& setting, Pipe& input, Pipe& output, Pipe& errors,
              RunResult& result) {
    std::string_view rest = setting.input;
    bool interrupted = setting.interrupt == 0;
    fcntl(input.ends[1], F_SETFL, O_NONBLOCK);
    while (output.ends[0] >= 0 || errors.ends[0] >= 0) {
        std::array<pollfd, 3> files = {{{output.ends[0], POLLIN, 0},
                                        {errors.ends[0], POLLIN, 0},
                                        {rest.empty() ? -1 : input.ends[1], POLLOUT, 0}}};
        poll(files.data(), files.size(), 10'000);
        if (files[0].revents != 0) Drain(output, result.output);
        if (files[1].revents != 0) Drain(errors, result.errors);
        if (files[2].revents != 0) Feed(input, rest, setting.interrupt == 0);
        if (rest.empty() && !interrupted) {
            InterruptWhenRead(process, setting.interrupt, input);
            interrupted = true;
        }
    }
}

}  // namespace

RunResult RunVkm(const std::vector<std::string>& arguments, const RunSetting& setting) {
    signal(SIGPIPE, SIG_IGN);
    Pipe input;
    Pipe output;
    Pipe errors;
    const pid_t process = fork();
    if (process == 0) BecomeVkm(arguments, setting, input, output, errors);
    if (setting.interrupt == 0) input.Close(0);
    output.Close(1);
    errors.Close(1);
    if (setting.closeOutputEarly) output.Close(0);
    if (setting.input.empty()) input.Close(1);

    RunResult result;
    Exchange(process, setting, input, output, errors, result);
    int status = 0;
    waitpid(process, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return result;
}

TestFolder::TestFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vkm-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) abort();
    path = name;
}

TestFolder::~TestFolder() {
    std::filesystem::remove_all(path);
}

std::string TestFolder::Add(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
}

std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace vemrado_test
