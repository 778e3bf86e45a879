#include "ui/FolderChooserBridge.h"

#include "model/AppModel.h"

#include <QFile>
#include <QPointer>

#include <utility>

FolderChooserBridge::FolderChooserBridge(QObject* parent) : QObject(parent) {
    AppModel* model = AppModel::instance();
    if (!model)
        return;
    QPointer<FolderChooserBridge> self(this);
    model->setFolderChooser([self](std::function<void(std::vector<std::string>)> onChosen) {
        if (!self)
            return;
        self->pending_ = std::move(onChosen);
        emit self->openRequested();
    });
}

FolderChooserBridge::~FolderChooserBridge() {
    if (AppModel* model = AppModel::instance())
        model->setFolderChooser({});
}

void FolderChooserBridge::choose(const QList<QUrl>& folders) {
    std::vector<std::string> paths;
    for (const QUrl& folder : folders)
        if (folder.isLocalFile())
            // Raw bytes, so a folder whose name is not valid UTF-8 round-trips.
            paths.push_back(QFile::encodeName(folder.toLocalFile()).toStdString());
    auto onChosen = std::exchange(pending_, {});
    if (onChosen && !paths.empty())
        onChosen(std::move(paths));
}

void FolderChooserBridge::dismiss() {
    pending_ = {};
}
