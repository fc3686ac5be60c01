#pragma once
// The frames the preview draws titles over, decoded one at a time on a worker thread so that
// the window never waits on a file. While one decodes, only the newest request waits: stepping
// through many clips decodes the one the user stops at, not every one passed.

#include <QFutureWatcher>
#include <QImage>
#include <QObject>
#include <QString>
#include <memory>
#include <unordered_map>
#include <vector>

#include "media/clip_media.h"
#include "source/clip_record.h"

namespace quillory::gui {

class FrameLoader : public QObject {
  Q_OBJECT

 public:
  explicit FrameLoader(QObject* parent = nullptr);
  ~FrameLoader() override;

  // The clips of a new open, or another media folder ("" for none): forgets every frame, and
  // the folder is searched again the first time a file is not where its document says.
  // `clips` must outlive the next call.
  void reset(const std::vector<ClipRecord>* clips, const QString& media_folder);
  // Asks for the frame of the clip at `index`; answered by frameReady or frameMissing, at once
  // when known.
  void request(int index);
  // Whether the last request is still unanswered.
  bool pending() const { return wanted_ >= 0; }

 Q_SIGNALS:
  void frameReady(int index, const QImage& frame);
  // `why` in a few words: "media not found: A001C003.mov".
  void frameMissing(int index, const QString& why);

 private:
  struct Outcome {
    QImage frame;
    QString why;
  };
  struct Folder;  // the media folder, indexed on first use

  void start(int index);
  void finished();
  void answer(int index, const Outcome& outcome);

  const std::vector<ClipRecord>* clips_ = nullptr;
  std::shared_ptr<Folder> folder_;
  // The answers so far, forgotten all at once when their frames grow too large to keep.
  std::unordered_map<int, Outcome> known_;
  qsizetype known_bytes_ = 0;
  int generation_ = 0;  // of the clips and folder the answers are for
  QFutureWatcher<Outcome>* watcher_ = nullptr;  // of the decode in flight; a new one for each
  int decoding_ = -1;   // the clip being decoded, -1 when none
  int decoding_generation_ = 0;
  int wanted_ = -1;     // the clip last asked for and not yet answered
};

}  // namespace quillory::gui
