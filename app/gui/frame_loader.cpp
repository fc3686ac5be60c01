#include "frame_loader.h"

#include <QFile>
#include <QtConcurrent/QtConcurrentRun>
#include <mutex>

#include "media/frame_decoder.h"

namespace quillory::gui {

// Indexing a large folder takes a while, so it happens on the worker thread, and only once a
// file is missing from where its document says it lies.
struct FrameLoader::Folder {
  std::string path;
  std::once_flag indexed;
  media::MediaFolder index;

  const media::MediaFolder* get() {
    if (path.empty()) return nullptr;
    std::call_once(indexed, [this] { index = media::MediaFolder(path); });
    return &index;
  }
};

namespace {

constexpr qsizetype kKnownBytes = 256 * 1024 * 1024;

QString shown_name(const media::ClipMedia& media) {
  return media.file_name.empty() ? QObject::tr("the clip names no file")
                                 : QString::fromStdString(media.file_name);
}

QImage picture_of(const media::RgbImage& image) {
  return QImage(image.pixels.data(), image.width, image.height, image.width * 3, QImage::Format_RGB888)
      .copy();  // the image above only borrows the pixels
}

}  // namespace

FrameLoader::FrameLoader(QObject* parent) : QObject(parent) {}

// A decode still running finishes on its own: it holds nothing of the window's.
FrameLoader::~FrameLoader() = default;

void FrameLoader::reset(const std::vector<ClipRecord>* clips, const QString& media_folder) {
  clips_ = clips;
  folder_ = std::make_shared<Folder>();
  folder_->path = QFile::encodeName(media_folder).toStdString();
  known_.clear();
  known_bytes_ = 0;
  wanted_ = -1;
  ++generation_;
}

void FrameLoader::request(int index) {
  if (clips_ == nullptr || index < 0 || static_cast<std::size_t>(index) >= clips_->size()) return;
  wanted_ = index;
  if (const auto known = known_.find(index); known != known_.end()) return answer(index, known->second);
  if (decoding_ < 0) start(index);
}

void FrameLoader::start(int index) {
  // What the worker needs is copied out here: it never reads the document, which a new open
  // may free while it works.
  const media::ClipMedia media = media::clip_media((*clips_)[static_cast<std::size_t>(index)]);
  decoding_ = index;
  decoding_generation_ = generation_;
  watcher_ = new QFutureWatcher<Outcome>(this);
  connect(watcher_, &QFutureWatcherBase::finished, this, &FrameLoader::finished);
  watcher_->setFuture(QtConcurrent::run([media, folder = folder_]() -> Outcome {
    const auto path = media::locate_media(media, folder->get());
    if (!path) return {{}, tr("media not found: %1").arg(shown_name(media))};
    try {
      return {picture_of(media::decode_frame(*path, media.first_frame)), {}};
    } catch (const std::exception& failure) {
      return {{}, tr("cannot decode %1: %2").arg(shown_name(media), QString::fromLocal8Bit(failure.what()))};
    }
  }));
}

void FrameLoader::finished() {
  const Outcome outcome = watcher_->result();
  watcher_->deleteLater();
  watcher_ = nullptr;
  const int index = std::exchange(decoding_, -1);
  // After a reset the answer is for clips or a folder no longer shown.
  if (wanted_ == index && decoding_generation_ == generation_) {
    if (known_bytes_ + outcome.frame.sizeInBytes() > kKnownBytes) {
      known_.clear();
      known_bytes_ = 0;
    }
    known_bytes_ += outcome.frame.sizeInBytes();
    known_.emplace(index, outcome);
    answer(index, outcome);
  } else if (wanted_ >= 0) {
    start(wanted_);
  }
}

void FrameLoader::answer(int index, const Outcome& outcome) {
  wanted_ = -1;
  if (outcome.frame.isNull()) {
    Q_EMIT frameMissing(index, outcome.why);
  } else {
    Q_EMIT frameReady(index, outcome.frame);
  }
}

}  // namespace quillory::gui
