#include "palettes/text_output_controller.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <string_view>

#include "document/log_line.h"
#include "document/output_file.h"
#include "palettes/palette_host.h"
#include "palettes/palette_window.h"
#include "palettes/panels.h"

namespace {

// At full speed the simulation steps thousands of times a second; the text
// view takes what arrived at most this often, in one insertion, so a long run
// keeps the window responsive. A single step (the Step command) shows at once.
constexpr int kShowIntervalMs = 50;
// The text view holds about this much of the newest text (at least one
// line); the whole log is in the log store and Save writes all of it.
constexpr std::size_t kShownBytes = 256 * 1024;
constexpr int kMaxShownLines = 5000;
// A line of a large world is tens of kilobytes long; laying out such lines
// would take the main thread for tenths of seconds, so the text view shows
// the start of each line, cut after a field, with an ellipsis: the time and
// the first few bodies. Laying out what is shown costs about a millisecond
// a kilobyte; at 512 bytes a 300-body world keeps two thirds of its steps a
// second while it logs (1 KB kept only 40%, measured with app_bench).
constexpr std::size_t kShownLineBytes = 512;

// The lines as the text view shows them: each cut to its first fields.
QString displayText(std::string_view lines) {
  std::string shown;
  shown.reserve(std::min(lines.size(), kShownBytes));
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    std::string_view line = lines.substr(0, end);
    lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
    if (line.size() > kShownLineBytes) {
      const std::size_t tab = line.rfind('\t', kShownLineBytes);
      line = line.substr(0, tab == std::string_view::npos || tab == 0 ? kShownLineBytes : tab);
      // Never end inside a UTF-8 sequence.
      while (!line.empty() && (static_cast<unsigned char>(line.back()) & 0xC0) == 0x80) {
        line.remove_suffix(1);
      }
      if (!line.empty() && static_cast<unsigned char>(line.back()) >= 0xC0) {
        line.remove_suffix(1);
      }
      shown.append(line);
      shown.append("\t\u2026");
    } else {
      shown.append(line);
    }
    shown.push_back('\n');
  }
  return QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size()));
}

// The newest whole lines of text, at most kShownBytes of them but at least
// the last line.
std::string_view newestLines(std::string_view text) {
  if (text.size() <= kShownBytes) {
    return text;
  }
  const std::size_t from = text.find('\n', text.size() - kShownBytes);
  if (from == std::string_view::npos || from + 1 >= text.size()) {
    const std::size_t last = text.rfind('\n', text.size() - 2);
    return last == std::string_view::npos ? text : text.substr(last + 1);
  }
  return text.substr(from + 1);
}

}  // namespace

TextOutputController::TextOutputController(PaletteHost& host, QObject* parent)
    : QObject(parent),
      host_(host),
      window_(std::make_unique<PaletteWindow>(QStringLiteral("TextPalette"), tr("Output"), host)) {
  viewtext_ = new QPlainTextEdit;
  viewtext_->setObjectName(QStringLiteral("viewtext"));
  viewtext_->setReadOnly(true);
  // The log only grows; an undo history of it would double its memory.
  viewtext_->setUndoRedoEnabled(false);
  viewtext_->setLineWrapMode(QPlainTextEdit::NoWrap);
  viewtext_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

  begin_ = new QPushButton(tr("Begin logging"));
  begin_->setObjectName(QStringLiteral("begin"));
  end_ = new QPushButton(tr("End logging"));
  end_->setObjectName(QStringLiteral("end"));
  clear_ = new QPushButton(tr("Clear"));
  clear_->setObjectName(QStringLiteral("clear"));
  save_ = new QPushButton(tr("Save…"));
  save_->setObjectName(QStringLiteral("save"));

  status_ = new QLabel;
  status_->setObjectName(QStringLiteral("lineCount"));

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(begin_);
  buttons->addWidget(end_);
  buttons->addWidget(status_, 1);
  buttons->addWidget(clear_);
  buttons->addWidget(save_);
  QVBoxLayout* layout = window_->contentLayout();
  layout->addWidget(viewtext_);
  layout->addLayout(buttons);
  window_->resize(640, 320);

  connect(begin_, &QPushButton::clicked, this, [this] { clickBegin(begin_); });
  connect(end_, &QPushButton::clicked, this, [this] { clickEnd(end_); });
  connect(clear_, &QPushButton::clicked, this, [this] { clickClear(clear_); });
  connect(save_, &QPushButton::clicked, this, [this] { clickSave(save_); });

  showTimer_ = new QTimer(this);
  showTimer_->setSingleShot(true);
  showTimer_->setInterval(kShowIntervalMs);
  connect(showTimer_, &QTimer::timeout, this, [this] {
    if (!unshown_.empty()) {
      showPendingText();
      showTimer_->start();
    }
  });

  // The close box hides the palette through the same toggle as its menu
  // item, so the item's check mark stays in step; logging goes on hidden.
  window_->onUserClose = [this] { host_.showOutputPaletteFromMenu(this); };

  clickEnd(nullptr);
  showLineCount();
}

TextOutputController::~TextOutputController() = default;

QWidget* TextOutputController::window() const {
  return window_.get();
}

void TextOutputController::writeLine() {
  line_.clear();
  appendLogLine(line_, host_.world());
  if (!log_.append(line_)) {
    // Nothing more can be kept: logging stops, and says why, rather than
    // leaving a log with a hole in it.
    clickEnd(nullptr);
    showLineCount();
    return;
  }
  unshown_ += line_;
  // Lines arrive faster than the text view takes them: only the newest ones
  // will be shown, so older ones need not wait.
  if (unshown_.size() > 2 * kShownBytes) {
    unshown_.erase(0, unshown_.size() - newestLines(unshown_).size());
    shownLines_ = -1;
  }
  if (!showTimer_->isActive()) {
    showPendingText();
    showTimer_->start();
  }
}

void TextOutputController::showPendingText() {
  if (unshown_.empty()) {
    return;
  }
  const std::string_view newest = newestLines(unshown_);
  const auto lines = std::count(newest.begin(), newest.end(), '\n');
  // Lines are whole when they arrive, so no UTF-8 sequence is cut here.
  const QString chunk = displayText(newest);
  QScrollBar* bar = viewtext_->verticalScrollBar();
  const bool followEnd = bar->value() == bar->maximum();
  // Dropped lines leave a gap; the text view then starts again from the
  // newest ones.
  if (newest.size() != unshown_.size() || shownLines_ < 0) {
    viewtext_->clear();
    shownLines_ = 0;
  }
  // The view keeps about kShownBytes of text, counted in lines of the size
  // the lines have now.
  const std::size_t lineBytes = std::clamp<std::size_t>(
      newest.size() / static_cast<std::size_t>(std::max<long>(1, lines)), 1, kShownLineBytes);
  viewtext_->setMaximumBlockCount(
      static_cast<int>(std::clamp<std::size_t>(kShownBytes / lineBytes, 2, kMaxShownLines)));
  QTextCursor cursor(viewtext_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(chunk);
  // The text ends in a newline, which leaves one empty block at the end.
  shownLines_ = std::min<int64_t>(shownLines_ + lines, viewtext_->blockCount() - 1);
  unshown_.clear();
  // A user who scrolled back to read keeps the place.
  if (followEnd) {
    bar->setValue(bar->maximum());
  }
  showLineCount();
}

void TextOutputController::showLineCount() {
  QString text;
  if (!log_.error().isEmpty()) {
    text = tr("Logging stopped: %1").arg(log_.error());
  } else if (log_.lineCount() == 1) {
    text = tr("1 line");
  } else {
    text = tr("%L1 lines").arg(log_.lineCount());
  }
  if (log_.error().isEmpty() && shownLines_ < log_.lineCount() && shownLines_ > 0) {
    text += tr(" (the newest %L1 shown; Save writes all)").arg(shownLines_);
  }
  if (status_->text() != text) {
    status_->setText(text);
  }
}

void TextOutputController::clickBegin(QObject*) {
  wantsText_ = true;
  begin_->setEnabled(false);
  end_->setEnabled(true);
}

void TextOutputController::clickEnd(QObject*) {
  wantsText_ = false;
  end_->setEnabled(false);
  begin_->setEnabled(true);
}

void TextOutputController::clickClear(QObject*) {
  log_.clear();
  std::string().swap(unshown_);
  shownLines_ = 0;
  showTimer_->stop();
  viewtext_->clear();
  showLineCount();
}

void TextOutputController::clickSave(QObject*) {
  Panels* dialogs = host_.panels();
  if (dialogs == nullptr) {
    return;
  }
  const std::optional<QString> path =
      dialogs->runSaveFilePanel(window_.get(), tr("Save Log"), QString());
  if (!path) {
    return;
  }
  // Written whole to a temporary file and moved into place (a FIFO or a
  // device is written as a stream, never replaced); a failed write leaves
  // any earlier file as it was and reports nothing.
  OutputFile file;
  if (file.open(*path, FifoOpen::FailWithoutReader) &&
      log_.copyTo([&file](const char* data, std::size_t size) { return file.write(data, size); })) {
    file.commit();
  }
}
