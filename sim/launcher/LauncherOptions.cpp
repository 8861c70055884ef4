#include "LauncherOptions.h"

namespace KovoSim {
namespace {

using Error = LauncherOptions::Error;

void RequirePointer(const std::string& pointer) {
    if (!pointer.empty() && pointer[0] != '/')
        throw Error("a JSON pointer is empty or starts with '/': \"" + pointer + "\"");
}

LauncherOptions ParseRun(const std::vector<std::string>& argv, size_t i) {
    LauncherOptions options;
    auto value = [&](const std::string& option) -> std::string {
        if (i + 1 >= argv.size()) throw Error(option + " needs a value");
        return argv[++i];
    };
    for (; i < argv.size(); ++i) {
        const std::string& arg = argv[i];
        if (arg == "--") {
            options.args.assign(argv.begin() + static_cast<long>(i) + 1, argv.end());
            break;
        } else if (arg == "--dir") {
            options.dir = value(arg);
        } else if (arg == "--scenario") {
            options.scenario = value(arg);
            options.scenarioGiven = true;
        } else if (arg == "--kovo") {
            options.kovo = value(arg);
        } else if (arg == "--once") {
            options.once = true;
        } else if (arg == "-h" || arg == "--help") {
            options.command = LauncherOptions::Command::Help;
            return options;
        } else {
            throw Error("unknown option \"" + arg + "\" (console arguments go after \"--\")");
        }
    }
    if (options.dir.empty()) throw Error("--dir needs a directory");
    if (options.scenario.empty()) throw Error("--scenario needs a name or a file");
    return options;
}

// <command> DIR [fixed arguments...]
LauncherOptions ParseWithDir(LauncherOptions::Command command, const std::vector<std::string>& argv,
                             size_t fixed) {
    const std::string& name = argv[0];
    if (argv.size() < 2 || argv[1].empty()) throw Error(name + " needs the host's directory");
    LauncherOptions options;
    options.command = command;
    options.dir = argv[1];
    if (argv.size() != 2 + fixed) {
        throw Error(name + " takes " + std::to_string(fixed + 1) + " argument" + (fixed ? "s" : "") +
                    ", got " + std::to_string(argv.size() - 1));
    }
    if (fixed >= 1) options.pointer = argv[2];
    if (fixed >= 2) options.value = argv[3];
    return options;
}

}  // namespace

LauncherOptions LauncherOptions::Parse(const std::vector<std::string>& argv) {
    if (argv.empty()) return LauncherOptions{};
    const std::string& first = argv[0];
    if (first == "run") return ParseRun(argv, 1);
    if (first == "help") {
        LauncherOptions options;
        options.command = Command::Help;
        return options;
    }
    if (first == "paths") return ParseWithDir(Command::Paths, argv, 0);
    if (first == "get") {
        auto options = ParseWithDir(Command::Get, argv, 1);
        RequirePointer(options.pointer);
        return options;
    }
    if (first == "set") {
        auto options = ParseWithDir(Command::Set, argv, 2);
        RequirePointer(options.pointer);
        return options;
    }
    if (first == "exec") {
        if (argv.size() < 2 || argv[1].empty() || argv[1] == "--")
            throw Error("exec needs the host's directory");
        if (argv.size() < 4 || argv[2] != "--") throw Error("usage: exec DIR -- COMMAND [ARGUMENTS...]");
        LauncherOptions options;
        options.command = Command::Exec;
        options.dir = argv[1];
        options.args.assign(argv.begin() + 3, argv.end());
        return options;
    }
    // Run inside a host by get/set; not for operators.
    if (first == "in-host-get" || first == "in-host-set") {
        LauncherOptions options;
        options.command = first == "in-host-get" ? Command::InHostGet : Command::InHostSet;
        const size_t want = options.command == Command::InHostGet ? 2 : 3;
        if (argv.size() != want) throw Error(first + ": wrong number of arguments");
        options.pointer = argv[1];
        if (want == 3) options.value = argv[2];
        return options;
    }
    if (!first.empty() && first[0] == '-') return ParseRun(argv, 0);
    throw Error("unknown command \"" + first + "\"");
}

std::string LauncherOptions::Usage(const std::string& program) {
    return "Usage:\n"
           "  " +
           program +
           " [run] [--dir DIR] [--scenario NAME|FILE] [--once] [--kovo PATH] [-- ARGS...]\n"
           "      Boot the simulated host whose disk is DIR (default ./sim-host) and run the console on "
           "this\n"
           "      terminal, starting it again whenever it exits. Ctrl-C ends the host. --once runs the "
           "console\n"
           "      once and exits with its status. ARGS go to the console (e.g. the VT number).\n"
           "  " +
           program +
           " exec DIR -- COMMAND [ARGS...]   run a command inside the host (running or not)\n"
           "  " +
           program +
           " get DIR /json/pointer           print a value of the host's configuration\n"
           "  " +
           program +
           " set DIR /json/pointer JSON      change a value of the host's configuration\n"
           "  " +
           program + " paths DIR                       print where the host's logs are on this machine\n";
}

}  // namespace KovoSim
