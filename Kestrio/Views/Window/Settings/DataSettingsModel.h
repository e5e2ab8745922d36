// The tab "Data" as QML reads it: what is stored, exports, imports and deletions. Belongs to the main queue.
#pragma once

#include "Kestrio/Pages/Settings/DataSettings.h"
#include "Kestrio/Reports/SessionImport.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

#include <QUrl>

namespace kestrio {

class DataSettingsModel final : public kestrio::SettingsFormModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    Q_PROPERTY(QString importPrompt READ importPrompt CONSTANT)

public:
    explicit DataSettingsModel(const WindowParts& parts);
    ~DataSettingsModel() override;

    void press(const QString& row, int button) override;

    static QString importPrompt();
    /// The name that an export begun now is proposed to have.
    Q_INVOKABLE QString exportName() const;
    /// Writes the chosen range into the file, in place of what is there.
    Q_INVOKABLE void exportTo(const QUrl& file);
    Q_INVOKABLE void importFrom(const QList<QUrl>& files);

Q_SIGNALS:
    /// The person is to say where to and where from.
    void exportWanted();
    void importWanted();

protected:
    Sections currentSections() const override;
    void set(const std::string& row, const SettingValue& value) override;

private:
    struct Import;

    void load();
    void beginImport(std::vector<SessionFile> files);
    void endImport(const ImportOutcome& outcome);
    void askToDeleteOld();
    void deleteActivity(std::optional<Date> before);

    DataSettings::State state_;
    std::vector<Subscription> tokens_;
    Subscription loading_;
    Subscription exporting_;
};

} // namespace kestrio
