#pragma once

#include <QImage>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "palettes/panels.h"

// Answers the dialogs from a script: each run of a panel takes the next
// scripted answer, or cancels when there is none.
class ScriptedPanels : public Panels {
 public:
  Answer confirmSaveFirst(QWidget*) override {
    ++confirmations;
    return confirmAnswer;
  }
  std::optional<OpenChoice> runOpenPanel(QWidget*) override { return take(opens); }
  std::optional<SaveChoice> runSavePanel(QWidget*) override { return take(saves); }
  std::optional<QString> runSaveFilePanel(QWidget*, const QString& title,
                                          const QString& suffix) override {
    lastFileTitle = title;
    lastFileSuffix = suffix;
    return take(files);
  }
  std::optional<QColor> chooseColor(QWidget*, const QColor&) override { return color; }
  bool printImage(QWidget*, const QImage& image) override {
    printed = image;
    return true;
  }
  void alert(QWidget*, const QString& title, const QString& message) override {
    alerts.push_back(title);
    alertMessages.push_back(message);
  }
  // A progress panel that counts its updates and is cancelled at the
  // cancelProgressAt-th one (never when 0).
  std::unique_ptr<Progress> openProgress(QWidget*, const QString& title) override {
    progressTitles.push_back(title);
    struct Scripted : Progress {
      explicit Scripted(ScriptedPanels& p) : panels(p) {}
      bool update(double, const QString& text) override {
        panels.progressTexts.push_back(text);
        return static_cast<int>(panels.progressTexts.size()) != panels.cancelProgressAt;
      }
      ScriptedPanels& panels;
    };
    return std::make_unique<Scripted>(*this);
  }
  // The same, whose Cancel button the test presses by calling
  // pressCancel().
  std::unique_ptr<Progress> openModelessProgress(QWidget* parent, const QString& title,
                                                 std::function<void()> cancelled) override {
    pressCancel = std::move(cancelled);
    return openProgress(parent, title);
  }
  std::optional<MovieChoice> runMoviePanel(QWidget*, const QString& suffix) override {
    lastFileSuffix = suffix;
    return take(movies);
  }
  void about(QWidget*, const QString& title, const QString& text) override {
    aboutTitle = title;
    aboutText = text;
  }

  Answer confirmAnswer = Answer::DontSave;
  int confirmations = 0;
  std::deque<OpenChoice> opens;
  std::deque<SaveChoice> saves;
  std::deque<QString> files;
  std::deque<MovieChoice> movies;
  std::optional<QColor> color;
  std::function<void()> pressCancel;
  QString aboutTitle;
  QString aboutText;
  QString lastFileTitle;
  QString lastFileSuffix;
  QImage printed;
  std::vector<QString> alerts;
  std::vector<QString> alertMessages;
  std::vector<QString> progressTitles;
  std::vector<QString> progressTexts;
  int cancelProgressAt = 0;

 private:
  template <typename T>
  static std::optional<T> take(std::deque<T>& queue) {
    if (queue.empty())
      return std::nullopt;
    T value = queue.front();
    queue.pop_front();
    return value;
  }
};
