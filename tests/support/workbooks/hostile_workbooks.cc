// Reads workbooks that are meant to do harm, each in a process of its own, and says what that
// takes:
//
//   hostile_workbooks [--mutations N] [--seed S] [--seconds T] [--megabytes M] [--keep FOLDER]
//   FILE... hostile_workbooks --extremes hostile_workbooks --only NUMBER [--seed S] --keep FOLDER
//   FILE...
//
// The first damages the given workbooks N times, 20,000 unless told; smaller ones more often than
// larger ones. The second makes, for each thing that costs a reader memory or time, a workbook with
// as much of it as may be. Either fails if one of the workbooks is neither read nor refused by a
// message of one line, or takes more than 1 second of processor time or 256 MB of memory; those go
// into the folder. The third makes the workbook of a number again, as it is told in a failure.

#include <getopt.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "tests/support/workbooks/extreme_workbooks.h"
#include "tests/support/workbooks/measured_read.h"
#include "tests/support/workbooks/mutations.h"

namespace nimbrel::spreadsheet {
namespace {

struct Options {
  bool extremes = false;
  std::uint64_t mutations = 20'000;
  std::uint64_t seed = 1;
  std::uint64_t only = 0;
  double seconds = 1;
  double megabytes = 256;
  std::string keep;
  std::vector<std::string> files;
};

bool ReadOptions(int count, char** arguments, Options& options) {
  static const std::vector<option> kOptions = {
      {"extremes", no_argument, nullptr, 'e'},      {"mutations", required_argument, nullptr, 'n'},
      {"seed", required_argument, nullptr, 's'},    {"only", required_argument, nullptr, 'o'},
      {"seconds", required_argument, nullptr, 't'}, {"megabytes", required_argument, nullptr, 'm'},
      {"keep", required_argument, nullptr, 'k'},    {nullptr, 0, nullptr, 0}};
  for (int found = 0;
       (found = ::getopt_long(count, arguments, "", kOptions.data(), nullptr)) != -1;) {
    switch (found) {
      case 'e':
        options.extremes = true;
        break;
      case 'n':
        options.mutations = std::strtoull(optarg, nullptr, 10);
        break;
      case 's':
        options.seed = std::strtoull(optarg, nullptr, 10);
        break;
      case 'o':
        options.only = std::strtoull(optarg, nullptr, 10);
        break;
      case 't':
        options.seconds = std::strtod(optarg, nullptr);
        break;
      case 'm':
        options.megabytes = std::strtod(optarg, nullptr);
        break;
      case 'k':
        options.keep = optarg;
        break;
      default:
        return false;
    }
  }
  options.files.assign(arguments + optind, arguments + count);
  return options.extremes == options.files.empty();
}

double Megabytes(std::uint64_t bytes) {
  return static_cast<double>(bytes) / 1e6;
}

/// Reads one workbook after the other, and keeps account of it.
class Account {
 public:
  explicit Account(const Options& options) : options_(options) {
    std::cout << std::fixed << std::setprecision(2);
  }

  MeasuredRead Read(const std::string& bytes, const std::string& name) {
    const MeasuredRead read = ReadMeasured(bytes);
    ++reads_;
    read_ += read.outcome == MeasuredRead::Outcome::kRead ? 1 : 0;
    if (read.seconds > longest_) {
      longest_ = read.seconds;
      longest_name_ = name;
    }
    if (read.memory > most_) {
      most_ = read.memory;
      most_name_ = name;
    }
    if (const std::string fault = FaultOf(read); !fault.empty()) {
      ++faults_;
      std::cout << name << ": " << fault << std::endl;
      Keep(bytes, name);
    }
    return read;
  }

  /// Whether all was well.
  bool Report() const {
    std::cout << reads_ << " workbooks: " << read_ << " read, " << reads_ - read_ - faults_
              << " refused, " << faults_ << " at fault\n"
              << "longest: " << longest_ << " s of processor time (" << longest_name_ << ")\n"
              << "most memory: " << Megabytes(most_) << " MB (" << most_name_ << ")" << std::endl;
    return faults_ == 0;
  }

 private:
  std::string FaultOf(const MeasuredRead& read) const {
    if (read.outcome == MeasuredRead::Outcome::kBroken) {
      return read.text;
    }
    const bool is_clear = read.outcome == MeasuredRead::Outcome::kRead ||
                          (read.text.starts_with("w: ") && read.text.size() > 6 &&
                           std::none_of(read.text.begin(), read.text.end(), [](char c) {
                             return static_cast<unsigned char>(c) < 0x20;
                           }));
    if (!is_clear) {
      return "its message is not clear: " + read.text;
    }
    if (read.seconds > options_.seconds) {
      return "takes " + std::to_string(read.seconds) + " s";
    }
    if (Megabytes(read.memory) > options_.megabytes) {
      return "takes " + std::to_string(Megabytes(read.memory)) + " MB";
    }
    return {};
  }

  void Keep(const std::string& bytes, std::string name) const {
    if (!options_.keep.empty()) {
      std::replace(name.begin(), name.end(), '/', '_');
      std::filesystem::create_directories(options_.keep);
      std::ofstream(std::filesystem::path(options_.keep) / name, std::ios::binary) << bytes;
    }
  }

  const Options& options_;
  std::uint64_t reads_ = 0;
  std::uint64_t read_ = 0;
  std::uint64_t faults_ = 0;
  double longest_ = 0;
  std::string longest_name_;
  std::uint64_t most_ = 0;
  std::string most_name_;
};

bool ReadExtremes(const Options& options) {
  Account account(options);
  bool as_expected = true;
  for (const ExtremeWorkbook& extreme : ExtremeWorkbooks()) {
    const std::string bytes = extreme.make_bytes();
    const MeasuredRead read = account.Read(bytes, extreme.name);
    std::cout << std::left << std::setw(48) << extreme.name << std::right << std::setw(7)
              << Megabytes(bytes.size()) << " MB of file" << std::setw(7) << read.seconds << " s"
              << std::setw(9) << Megabytes(read.memory) << " MB  "
              << (read.text.empty() ? "read" : read.text) << std::endl;
    if (read.text.find(extreme.refusal) == std::string::npos ||
        read.text.empty() != extreme.refusal.empty()) {
      as_expected = false;
      std::cout << "expected: " << extreme.refusal << std::endl;
    }
  }
  return account.Report() && as_expected;
}

bool ReadMutations(const Options& options) {
  std::vector<Mutator> workbooks;
  std::vector<std::size_t> turns;  // numbers of workbooks
  for (const std::string& file : options.files) {
    workbooks.emplace_back(ReadBytes(file));
    constexpr std::size_t kLarge = 100'000;
    turns.insert(turns.end(), workbooks.back().size() > kLarge ? 2 : 16, workbooks.size() - 1);
  }
  Account account(options);
  const std::uint64_t first = options.only > 0 ? options.only : 1;
  const std::uint64_t last = options.only > 0 ? options.only : options.mutations;
  for (std::uint64_t number = first; number <= last; ++number) {
    const std::size_t chosen = turns[number % turns.size()];
    const std::string bytes = workbooks[chosen].Make(options.seed << 32 | number);
    const std::string name = std::to_string(number) + "-" +
                             std::filesystem::path(options.files[chosen]).filename().string();
    const MeasuredRead read = account.Read(bytes, name);
    if (options.only > 0) {
      std::cout << name << ": " << (read.text.empty() ? "read" : read.text) << '\n';
      std::filesystem::create_directories(options.keep);
      std::ofstream(std::filesystem::path(options.keep) / name, std::ios::binary) << bytes;
    }
  }
  return account.Report();
}

}  // namespace
}  // namespace nimbrel::spreadsheet

int main(int count, char** arguments) {
  nimbrel::spreadsheet::Options options;
  if (!nimbrel::spreadsheet::ReadOptions(count, arguments, options)) {
    std::cerr << "expected --extremes, or workbooks to damage\n";
    return 2;
  }
  const bool all_well = options.extremes ? nimbrel::spreadsheet::ReadExtremes(options)
                                         : nimbrel::spreadsheet::ReadMutations(options);
  return all_well ? 0 : 1;
}
