#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Exit statuses besides 0: the world cannot be read or a file cannot be
// written; the command line is not usable.
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// The command line of orrenvale-batch.
struct BatchOptions {
  QString world;
  int64_t steps = 1;
  std::optional<QString> logPath;  // "-" is standard output
  bool exact = false;
  std::optional<QString> savePath;
  bool summary = false;
  bool progress = false;
  bool help = false;
  bool version = false;
};

// Either the options or the reason why the command line is not usable.
struct BatchOptionsResult {
  BatchOptions options;
  QString error;
};

// Parses the arguments after the program name. Progress starts as given by
// progressDefault (whether standard error is a terminal); --progress turns it
// on. Options may come before or after the world; "--" ends the options.
BatchOptionsResult parseBatchOptions(const std::vector<std::string>& args, bool progressDefault);

// The usage text printed by --help and after a usage error.
const char* batchUsage();
