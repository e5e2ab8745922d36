#include "Kestrio/Views/Window/Settings/DataSettingsModel.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Views/Values/Shown.h"
#include "Kestrio/Views/Window/ActivityArchive.h"

#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>

namespace kestrio {
namespace {

/// How many sessions are in the file, or why there is none, in the system's words.
using ExportOutcome = std::variant<std::size_t, std::string>;

ExportOutcome writeSessions(const std::vector<ClassifiedSession>& sessions, const Calendar& calendar,
                            const QString& path) {
    QSaveFile file(path);
    bool isWritten = file.open(QIODevice::WriteOnly);
    CSVExporter::write(sessions, calendar, [&](std::string_view text) {
        isWritten = isWritten && file.write(text.data(), static_cast<qint64>(text.size())) >= 0;
    });
    if (isWritten && file.commit())
        return sessions.size();
    return file.errorString().toStdString();
}

std::variant<std::vector<SessionFile>, ImportFailure> opened(const QList<QUrl>& urls) {
    std::vector<SessionFile> files;
    for (const auto& url : urls) {
        const QFileInfo info(url.toLocalFile());
        const auto name = info.fileName().toStdString();
        files.push_back({name, openForReading(info.filePath().toStdString())});
        if (!files.back().content)
            return ImportFailure{unreadableFileText(name, {errno, std::generic_category()})};
    }
    return files;
}

} // namespace

DataSettingsModel::DataSettingsModel(const WindowParts& parts) : SettingsFormModel(parts) {
    const auto takePresence = [this](AgentLink::Presence presence) {
        state_.isAgentThere = presence == AgentLink::Presence::present;
        look();
    };
    tokens_.push_back(parts.agent.presence().observe(takePresence));
    tokens_.push_back(parts.agent.observeData([this] { load(); }));
    load();
    takePresence(parts.agent.presence().value());
}

DataSettingsModel::~DataSettingsModel() = default;

SettingsFormModel::Sections DataSettingsModel::currentSections() const {
    return {DataSettings::sections(state_, parts().calendar)};
}

void DataSettingsModel::load() {
    if (!parts().archive)
        return;
    loading_ = parts().archive->ask([](ActivityArchive& archive) { return archive.stored(); },
                                    [this](DataSettings::Stored stored) {
                                        state_.stored = std::move(stored);
                                        look();
                                    });
}

void DataSettingsModel::set(const std::string& row, const SettingValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value); text && row == DataSettings::range)
        state_.range = exportRange(*text).value_or(state_.range);
    if (const auto* const days = std::get_if<std::int64_t>(&value); days && row == DataSettings::olderThan)
        state_.deleteAfterDays = *days;
}

void DataSettingsModel::press(const QString& row, int button) {
    const auto id = row.toStdString();
    if (id == DataSettings::location)
        parts().host.showInFiles(parts().host.historyFile);
    else if (id == DataSettings::exportFile)
        Q_EMIT exportWanted();
    else if (id == DataSettings::importFiles)
        Q_EMIT importWanted();
    else if (id == DataSettings::deleting && button == DataSettings::deleteOldButton)
        askToDeleteOld();
    else if (id == DataSettings::deleting && button == DataSettings::deleteAllButton)
        ask(DataSettings::deleteAllQuestion(), [this] { deleteActivity(std::nullopt); });
}

QString DataSettingsModel::importPrompt() {
    return shown(DataSettings::importPrompt);
}

QString DataSettingsModel::exportName() const {
    return plain(proposedExportName(parts().clock.now(), parts().calendar));
}

void DataSettingsModel::exportTo(const QUrl& file) {
    if (!parts().archive || state_.isExporting)
        return;
    const auto path = file.toLocalFile();
    const auto now = parts().clock.now();
    auto& classification = parts().classification;
    exporting_ = parts().archive->ask(
        [path, now, range = state_.range, calendar = parts().calendar,
         rules = Classification{classification.categorizer().snapshot(), classification.projectRules().rules()}](
            ActivityArchive& archive) {
            const auto span = interval(range, now, archive.stored().since, calendar);
            auto found = archive.sessions(span);
            auto* const sessions = std::get_if<std::vector<ActivitySession>>(&found);
            return sessions
                       ? writeSessions(exportedSessions(std::move(*sessions), span, calendar, rules), calendar, path)
                       : ExportOutcome("The history can't be read");
        },
        [this, path](const ExportOutcome& outcome) {
            const auto name = QFileInfo(path).fileName().toStdString();
            const auto* const count = std::get_if<std::size_t>(&outcome);
            state_.isExporting = false;
            state_.exportResult =
                count ? exportedText(*count, name, parts().calendar) : exportFailedText(std::get<std::string>(outcome));
            look();
        });
    state_.isExporting = true;
    look();
}

void DataSettingsModel::importFrom(const QList<QUrl>& urls) {
    if (state_.isImporting || urls.isEmpty())
        return;
    auto files = opened(urls);
    if (const auto* const failure = std::get_if<ImportFailure>(&files))
        return endImport(*failure);
    state_.isImporting = true;
    look();
    beginImport(std::move(std::get<std::vector<SessionFile>>(files)));
}

/// What is under way at the agent. Belongs to the link's worker queue; it holds itself until its end is told.
struct DataSettingsModel::Import {
    std::vector<SessionFile> files;
    Subscription running = {};
};

void DataSettingsModel::beginImport(std::vector<SessionFile> files) {
    const auto import = std::make_shared<Import>(Import{std::move(files)});
    const auto ended = whileAlive([this](const ImportOutcome& outcome) { endImport(outcome); });
    parts().agent.ask([import, ended, &main = parts().queue](Background& agent) {
            import->running = agent.importFiles(std::move(import->files),
                                                {.ended = [import, ended, &main](const ImportOutcome& outcome) {
                                                    main.async([ended, outcome] { ended(outcome);
    });
    import->running = {};
}
});
return true;
},
        [ended](const std::optional<bool>& isAsked) {
    if (!isAsked)
        ended(ImportFailure{"Kestrio is not running"});
        });
}

void DataSettingsModel::endImport(const ImportOutcome& outcome) {
    state_.isImporting = false;
    state_.importResult = importText(outcome, parts().calendar);
    look();
}

void DataSettingsModel::askToDeleteOld() {
    const auto days = state_.deleteAfterDays;
    ask(DataSettings::deleteOldQuestion(days),
        [this, days] { deleteActivity(parts().calendar.addingDays(parts().clock.now(), -static_cast<int>(days))); });
}

void DataSettingsModel::deleteActivity(std::optional<Date> before) {
    parts().agent.ask([before](Background& agent) { return agent.deleteActivity(before); },
                      whileAlive([this](const auto&) { load(); }));
}

} // namespace kestrio
