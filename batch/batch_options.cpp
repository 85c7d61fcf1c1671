#include "batch_options.h"

#include <charconv>

namespace {

std::optional<int64_t> parseSteps(const std::string& text) {
  int64_t n = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (text.empty() || error != std::errc() || end != text.data() + text.size() || n < 0) {
    return std::nullopt;
  }
  return n;
}

}  // namespace

const char* batchUsage() {
  return "Usage: orrenvale-batch [OPTIONS] WORLD.ovd\n"
         "Steps a world without a display.\n"
         "\n"
         "  -n N, --steps N   world steps to take (default 1)\n"
         "  --log FILE        after every step one line of body states; '-' is stdout\n"
         "  --exact           write the reals of the log with \"%.17g\" instead of \"%f\"\n"
         "  --save FILE       after the last step write the world as a datafile\n"
         "  --summary         after the last step print steps, elapsed time, bodies,\n"
         "                    energy, momentum, centre of mass and angular momentum,\n"
         "                    tab-separated\n"
         "  --progress        progress bar on stderr (on by default when stderr is a\n"
         "                    terminal)\n"
         "  --help            print this help\n"
         "  --version         print the version\n"
         "\n"
         "Exit status: 0 on success, 1 when the world cannot be read or a file cannot\n"
         "be written, 2 on a usage error. A regular FILE is replaced only once all of\n"
         "it is written; a FIFO, a device or /dev/stdout is written directly.\n";
}

BatchOptionsResult parseBatchOptions(const std::vector<std::string>& args, bool progressDefault) {
  BatchOptionsResult result;
  BatchOptions& o = result.options;
  o.progress = progressDefault;
  std::vector<std::string> worlds;
  bool optionsEnded = false;

  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string arg = args[i];
    if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
      worlds.push_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }
    // "--name=value" and "-nVALUE" carry their value inside the argument.
    std::optional<std::string> attached;
    if (arg.starts_with("--")) {
      if (const auto eq = arg.find('='); eq != std::string::npos) {
        attached = arg.substr(eq + 1);
        arg.resize(eq);
      }
    } else if (arg.starts_with("-n") && arg.size() > 2) {
      attached = arg.substr(2);
      arg = "-n";
    }
    const auto value = [&]() -> std::optional<std::string> {
      if (attached) {
        return attached;
      }
      if (i + 1 < args.size()) {
        return args[++i];
      }
      return std::nullopt;
    };
    const auto flag = [&](bool& field) {
      if (attached) {
        result.error =
            QStringLiteral("option '%1' takes no value").arg(QString::fromStdString(arg));
      }
      field = true;
    };

    if (arg == "-n" || arg == "--steps") {
      const auto text = value();
      const auto n = text ? parseSteps(*text) : std::nullopt;
      if (!text) {
        result.error =
            QStringLiteral("option '%1' needs a number of steps").arg(QString::fromStdString(arg));
      } else if (!n) {
        result.error = QStringLiteral("'%1' is not a number of steps (a whole number, 0 or more)")
                           .arg(QString::fromStdString(*text));
      } else {
        o.steps = *n;
      }
    } else if (arg == "--log" || arg == "--save") {
      const auto path = value();
      if (!path || path->empty()) {
        result.error =
            QStringLiteral("option '%1' needs a file name").arg(QString::fromStdString(arg));
      } else {
        (arg == "--log" ? o.logPath : o.savePath) = QString::fromStdString(*path);
      }
    } else if (arg == "--exact") {
      flag(o.exact);
    } else if (arg == "--summary") {
      flag(o.summary);
    } else if (arg == "--progress") {
      flag(o.progress);
    } else if (arg == "--help" || arg == "-h") {
      flag(o.help);
    } else if (arg == "--version") {
      flag(o.version);
    } else {
      result.error = QStringLiteral("unknown option '%1'").arg(QString::fromStdString(args[i]));
    }
    if (!result.error.isEmpty()) {
      return result;
    }
  }

  if (o.help || o.version) {
    return result;
  }
  if (worlds.empty()) {
    result.error = QStringLiteral("no world file given");
  } else if (worlds.size() > 1) {
    result.error = QStringLiteral("more than one world file given");
  } else {
    o.world = QString::fromStdString(worlds.front());
  }
  return result;
}
