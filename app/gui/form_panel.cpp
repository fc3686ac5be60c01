#include "form_panel.h"

#include "xml_text_validator.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quillory::gui {
namespace {

QString text_of(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void select_text(QComboBox* menu, const QString& text) {
  const int index = menu->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
  if (index >= 0) menu->setCurrentIndex(index);
}

// Refills a menu, keeping the selected title when the new list still has it, else `fallback`.
void refill(QComboBox* menu, const QStringList& titles, const QString& fallback) {
  const QString previous = menu->currentText();
  const QSignalBlocker quiet(menu);
  menu->clear();
  menu->addItems(titles);
  const int kept = titles.indexOf(previous);
  const int index = kept >= 0 ? kept : titles.indexOf(fallback);
  menu->setCurrentIndex(index >= 0 ? index : (titles.isEmpty() ? -1 : 0));
}

QStringList texts_of(const std::vector<std::string>& texts) {
  QStringList list;
  for (const auto& text : texts) list << QString::fromStdString(text);
  return list;
}

int checkbox_state(const QCheckBox* box) {
  switch (box->checkState()) {
    case Qt::Checked: return kCheckboxOn;
    case Qt::PartiallyChecked: return -1;
    case Qt::Unchecked: break;
  }
  return 0;
}

}  // namespace

FormPanel::FormPanel(QWidget* parent)
    : QWidget(parent),
      source_menu_(new QComboBox(this)),
      template_menu_(new QComboBox(this)),
      rate_menu_(new QComboBox(this)),
      name_field_(new QLineEdit(this)),
      timecode_reader_(new QCheckBox(tr("Timecode R&eader on every clip"), this)),
      import_safe_(new QCheckBox(tr("Import-safe output"), this)) {
  source_menu_->setObjectName(QStringLiteral("sourcePopup"));
  source_menu_->setToolTip(tr("Title the master clips, or every shot of a sequence of the document"));
  source_menu_->addItem(QString::fromUtf8(kMasterClips));
  template_menu_->setObjectName(QStringLiteral("templatePopup"));
  template_menu_->setPlaceholderText(tr("(open a document)"));
  template_menu_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  template_menu_->setMinimumContentsLength(16);
  rate_menu_->setObjectName(QStringLiteral("ratePopup"));
  rate_menu_->setToolTip(tr("The new sequence's frame rate"));
  const Controller no_document({});
  refill(rate_menu_, texts_of(no_document.rate_choices()), QString::fromStdString(no_document.default_rate()));
  name_field_->setObjectName(QStringLiteral("nameField"));
  name_field_->setValidator(new XmlTextValidator(name_field_));
  name_field_->setAcceptDrops(false);
  name_field_->setToolTip(tr("The new sequence's name"));
  auto* sequence_form = new QFormLayout;
  sequence_form->addRow(tr("&Source:"), source_menu_);
  sequence_form->addRow(tr("&Template:"), template_menu_);
  sequence_form->addRow(tr("Frame &rate:"), rate_menu_);
  sequence_form->addRow(tr("Sequence &name:"), name_field_);

  // The five title lines: a label in front, a choice of what the line shows.
  auto* lines_box = new QGroupBox(tr("Title lines"), this);
  auto* grid = new QGridLayout(lines_box);
  grid->addWidget(new QLabel(tr("Label"), lines_box), 0, 1);
  grid->addWidget(new QLabel(tr("Shows"), lines_box), 0, 2);
  const int min_field_width = fontMetrics().averageCharWidth() * 14;
  for (std::size_t i = 0; i < 5; ++i) {
    const int row = static_cast<int>(i) + 1;
    auto* caption = new QLabel(tr("Line &%1:").arg(row), lines_box);
    auto* edit = new QLineEdit(lines_box);
    edit->setObjectName(QStringLiteral("line%1Label").arg(row));
    edit->setValidator(new XmlTextValidator(edit));
    edit->setAcceptDrops(false);
    edit->setMinimumWidth(min_field_width);
    edit->setPlaceholderText(tr("no label"));
    edit->setToolTip(tr("Text put in front of line %1 (with \"Text\": the whole line)").arg(row));
    auto* menu = new QComboBox(lines_box);
    menu->setObjectName(QStringLiteral("line%1Popup").arg(row));
    for (std::string_view title : CHOICE_TITLES) menu->addItem(text_of(title));
    // The first title is a single space, so it shows as a blank item; say what it means.
    menu->setItemData(0, tr("An empty line"), Qt::ToolTipRole);
    menu->setItemData(0, tr("Empty line"), Qt::AccessibleTextRole);
    menu->setToolTip(tr("What line %1 shows").arg(row));
    caption->setBuddy(edit);
    grid->addWidget(caption, row, 0);
    grid->addWidget(edit, row, 1);
    grid->addWidget(menu, row, 2);
    labels_[i] = edit;
    choices_[i] = menu;
    connect(edit, &QLineEdit::textChanged, this, &FormPanel::linesChanged);
    connect(menu, &QComboBox::currentIndexChanged, this, &FormPanel::linesChanged);
  }
  grid->setColumnStretch(1, 1);
  // Another template draws the title another way.
  connect(template_menu_, &QComboBox::currentIndexChanged, this, &FormPanel::linesChanged);
  timecode_reader_->setObjectName(QStringLiteral("tcrCheckbox"));
  grid->addWidget(timecode_reader_, 6, 1, 1, 2);
  import_safe_->setObjectName(QStringLiteral("importSafeCheckbox"));
  import_safe_->setToolTip(tr("Give every title its own id, rate and UUID and define each media "
                              "file where it is first used, so that Premiere Pro, DaVinci "
                              "Resolve and OpenTimelineIO read the sequence as written"));
  sequence_form->addRow(QString(), import_safe_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(sequence_form);
  layout->addWidget(lines_box);
  layout->addStretch(1);
  restore(default_form_settings());
}

Form FormPanel::form() const {
  Form form;
  // The first item is the master clips, whatever a sequence after it is named.
  if (source_menu_->currentIndex() > 0) form.sourcePopup = source_menu_->currentText().toStdString();
  if (template_menu_->currentIndex() >= 0) form.templatePopup = template_menu_->currentText().toStdString();
  if (rate_menu_->currentIndex() >= 0) form.ratePopup = rate_menu_->currentText().toStdString();
  form.nameField = name_field_->text().toStdString();
  for (std::size_t i = 0; i < form.lines.size(); ++i) {
    form.lines[i].label = labels_[i]->text().toStdString();
    form.lines[i].choice.reset();
    if (choices_[i]->currentIndex() >= 0) form.lines[i].choice = choices_[i]->currentText().toStdString();
  }
  form.tcrCheckbox = timecode_reader_->isEnabled() ? checkbox_state(timecode_reader_) : 0;
  form.importSafeCheckbox = checkbox_state(import_safe_);
  return form;
}

void FormPanel::showSource(const Controller& controller) {
  // Found by element rather than by name: a sequence may be named like the first item.
  const auto& source = controller.source();
  int chosen = 0;
  for (std::size_t i = 0; i < source.sequences.size() && chosen == 0; ++i) {
    if (source.sequence != nullptr && source.sequences[i].element == source.sequence) {
      chosen = static_cast<int>(i) + 1;
    }
  }
  const QSignalBlocker quiet(source_menu_);
  source_menu_->setCurrentIndex(chosen);
  rate_menu_->setEnabled(!controller.titles_over_sequence());
}

void FormPanel::showDocument(const Controller& controller) {
  // An FCPXML document's clips are its event clips; it has no Timecode Reader filter.
  QStringList sources{controller.fcpxml() ? tr("Event Clips") : QString::fromUtf8(kMasterClips)};
  timecode_reader_->setEnabled(!controller.fcpxml());
  for (const auto& sequence : controller.source().sequences) sources << QString::fromStdString(sequence.name);
  refill(source_menu_, sources, sources.front());
  showSource(controller);
  QStringList templates;
  for (const auto& title : controller.source().templates) templates << QString::fromStdString(title.name);
  refill(template_menu_, templates, QString());
  refill(rate_menu_, texts_of(controller.rate_choices()), QString::fromStdString(controller.default_rate()));
  name_field_->setText(QString::fromStdString(controller.document_sequence_name()));
  if (controller.titles_over_sequence()) name_field_->setText(source_menu_->currentText());
}

void FormPanel::restore(const FormSettings& values) {
  for (std::size_t i = 0; i < 5; ++i) {
    labels_[i]->setText(values.labels[i]);
    select_text(choices_[i], values.choices[i]);
  }
  timecode_reader_->setChecked(values.timecode_reader);
  import_safe_->setChecked(values.import_safe);
  select_text(rate_menu_, values.rate);
}

void FormPanel::store(FormSettings& values) const {
  for (std::size_t i = 0; i < 5; ++i) {
    values.labels[i] = labels_[i]->text();
    values.choices[i] = choices_[i]->currentText();
  }
  values.timecode_reader = timecode_reader_->isChecked();
  values.import_safe = import_safe_->isChecked();
  values.rate = rate_menu_->currentText();
}

QList<QWidget*> FormPanel::controls() const {
  QList<QWidget*> chain{source_menu_, template_menu_, rate_menu_, name_field_, import_safe_};
  for (std::size_t i = 0; i < 5; ++i) chain << labels_[i] << choices_[i];
  chain << timecode_reader_;
  return chain;
}

}  // namespace quillory::gui
