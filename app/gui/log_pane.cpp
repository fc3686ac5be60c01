#include "log_pane.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace quillory::gui {
namespace {
// Enough to read back over the last document; older lines are still on standard output.
constexpr int kKeptLines = 20000;
}  // namespace

LogPane::LogPane(QWidget* parent)
    : QWidget(parent), toggle_(new QToolButton(this)), view_(new QPlainTextEdit(this)) {
  toggle_->setObjectName(QStringLiteral("logToggle"));
  toggle_->setText(tr("&Log"));
  toggle_->setCheckable(true);
  toggle_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  toggle_->setAutoRaise(true);

  view_->setObjectName(QStringLiteral("logView"));
  view_->setReadOnly(true);
  view_->setAcceptDrops(false);
  view_->setMaximumBlockCount(kKeptLines);
  view_->setLineWrapMode(QPlainTextEdit::NoWrap);
  view_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  view_->setMinimumHeight(view_->fontMetrics().lineSpacing() * 6);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(toggle_, 0, Qt::AlignLeft);
  layout->addWidget(view_, 1);

  connect(toggle_, &QToolButton::toggled, this, &LogPane::setExpanded);
  setExpanded(false);
}

void LogPane::append(const QString& line) {
  pending_.append(line);
}

void LogPane::flush() {
  if (pending_.isEmpty()) return;
  view_->appendPlainText(pending_.join(QLatin1Char('\n')));
  pending_.clear();
}

void LogPane::showWarnings(const std::vector<std::string>& warnings) {
  if (warnings.empty()) return;
  for (const auto& warning : warnings) append(QString::fromStdString(warning));
  flush();
  setExpanded(true);
}

bool LogPane::isExpanded() const {
  return toggle_->isChecked();
}

void LogPane::setExpanded(bool expanded) {
  if (toggle_->isChecked() != expanded) toggle_->setChecked(expanded);
  toggle_->setArrowType(expanded ? Qt::DownArrow : Qt::RightArrow);
  view_->setVisible(expanded);
  // Collapsed, the pane gives its height back to the form above it.
  setSizePolicy(QSizePolicy::Preferred, expanded ? QSizePolicy::Expanding : QSizePolicy::Maximum);
}

QString LogPane::text() const {
  return view_->toPlainText();
}

}  // namespace quillory::gui
