#include "palettes/text_output_controller.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QTextCursor>
#include <QTimer>
#include <QVBoxLayout>

#include "document/log_line.h"
#include "palettes/palette_host.h"
#include "palettes/palette_window.h"
#include "palettes/panels.h"

namespace {

// At full speed the simulation steps thousands of times a second; the text
// view takes what arrived at most this often, in one insertion, so a long run
// keeps the window responsive. A single step (the Step command) shows at once.
constexpr int kShowIntervalMs = 50;

}  // namespace

TextOutputController::TextOutputController(QObject* parent)
    : QObject(parent),
      window_(std::make_unique<PaletteWindow>(QStringLiteral("TextPalette"), tr("Output"))) {
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

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(begin_);
  buttons->addWidget(end_);
  buttons->addStretch();
  buttons->addWidget(clear_);
  buttons->addWidget(save_);
  auto* layout = new QVBoxLayout(window_.get());
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
    if (shownBytes_ != log_.size()) {
      showPendingText();
      showTimer_->start();
    }
  });

  // The close box hides the palette through the same toggle as its menu
  // item, so the item's check mark stays in step; logging goes on hidden.
  window_->onUserClose = [this] {
    if (PaletteHost* host = paletteHost()) {
      host->showOutputPaletteFromMenu(this);
    }
  };

  clickEnd(nullptr);
}

TextOutputController::~TextOutputController() = default;

QWidget* TextOutputController::window() const {
  return window_.get();
}

void TextOutputController::writeLine() {
  PaletteHost* host = paletteHost();
  if (host == nullptr) {
    return;
  }
  appendLogLine(log_, host->world());
  if (!showTimer_->isActive()) {
    showPendingText();
    showTimer_->start();
  }
}

void TextOutputController::showPendingText() {
  if (shownBytes_ == log_.size()) {
    return;
  }
  // Lines are whole when they arrive, so no UTF-8 sequence is cut here.
  const QString chunk = QString::fromUtf8(log_.data() + shownBytes_,
                                          static_cast<qsizetype>(log_.size() - shownBytes_));
  shownBytes_ = log_.size();
  QScrollBar* bar = viewtext_->verticalScrollBar();
  const bool followEnd = bar->value() == bar->maximum();
  QTextCursor cursor(viewtext_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(chunk);
  // A user who scrolled back to read keeps the place.
  if (followEnd) {
    bar->setValue(bar->maximum());
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
  std::string().swap(log_);
  shownBytes_ = 0;
  showTimer_->stop();
  viewtext_->clear();
}

void TextOutputController::clickSave(QObject*) {
  Panels* dialogs = panels();
  if (dialogs == nullptr) {
    return;
  }
  const std::optional<QString> path =
      dialogs->runSaveFilePanel(window_.get(), tr("Save Log"), QString());
  if (!path) {
    return;
  }
  // Written whole to a temporary file and moved into place; a failed write
  // leaves any earlier file as it was and, as the log's saving always has,
  // reports nothing.
  QSaveFile file(*path);
  if (!file.open(QIODevice::WriteOnly)) {
    return;
  }
  file.write(log_.data(), static_cast<qint64>(log_.size()));
  file.commit();
}
