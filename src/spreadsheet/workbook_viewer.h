#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/message_box.h"
#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Brings a workbook before the user's eyes.
class WorkbookViewer {
 public:
  virtual ~WorkbookViewer() = default;

  /// Called when a hidden program with this workbook becomes visible. `path` is the file that the
  /// workbook was opened from, empty if it has never been saved. Raises RuntimeError if the
  /// workbook cannot be shown.
  virtual void Show(const Workbook& workbook, const std::string& path) = 0;
};

/// Writes the workbook to a file of the user's choice and shows nothing.
class WorkbookSaver final : public WorkbookViewer {
 public:
  /// `is_stopped` is asked while the file is written; see WriteXlsx.
  explicit WorkbookSaver(std::string path, std::function<bool()> is_stopped = {})
      : path_(std::move(path)), is_stopped_(std::move(is_stopped)) {}

  /// Raises error 1004 if the file cannot be written, error 18 if the user has stopped it.
  void Show(const Workbook& workbook, const std::string& path) override;

 private:
  std::string path_;
  std::function<bool()> is_stopped_;
};

/// Starts a program that goes on by itself, found as a shell would find it: the program and its
/// arguments. False if there is no such program or it does not start.
using StartProcess = std::function<bool(const std::vector<std::string>& command)>;

/// Opens the workbook on the user's desktop: in LibreOffice as a document that has not been saved
/// yet, or else in the system's own program for the file. Where there is neither, a message says
/// where the file is.
///
/// A workbook that has no file is written into a new folder of its own, for the user's eyes only,
/// in the user's folder ("nimbrel-UID") among the temporary files. The program that opens it needs
/// it, and nobody tells when no longer. So each viewer that is made sweeps up what the earlier ones
/// have left there a day ago or longer, but for what a program has locked. The files cannot be
/// written to, so that nobody saves work into what will be swept up; what a message has named is
/// never swept up.
class DesktopViewer final : public WorkbookViewer {
 public:
  /// `folder` is where temporary files go; an empty one means the system's own. `opener` is the
  /// command that opens a file in the system's own program, but for the file at its end; none where
  /// a file is started as a program is. The message box must live as long as this.
  DesktopViewer(StartProcess start, platform::MessageBox& messages, std::string folder = {},
                std::vector<std::string> opener = {"xdg-open"});

  /// Raises error 1004 if the file cannot be written.
  void Show(const Workbook& workbook, const std::string& path) override;

 private:
  std::string TemporaryFolder() const;
  /// The user's folder, which may not be there.
  std::string UsersFolder() const;
  void SweepUp() const;
  std::string WriteTemporary(const Workbook& workbook) const;

  StartProcess start_;
  platform::MessageBox& messages_;
  std::string folder_;
  std::vector<std::string> opener_;
};

}  // namespace nimbrel::spreadsheet
