#pragma once
// Lets the model ask for folders through the window's folder dialog: the model calls
// its chooser, this object asks QML to open the dialog, and the dialog's answer comes
// back through choose() or dismiss(). One instance lives in the main window.

#include <QList>
#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <string>
#include <vector>

class FolderChooserBridge : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit FolderChooserBridge(QObject* parent = nullptr);
    ~FolderChooserBridge() override;

    // The dialog's answer: local folders in the order chosen. Anything that is not a
    // local file URL is ignored.
    Q_INVOKABLE void choose(const QList<QUrl>& folders);
    Q_INVOKABLE void dismiss();

signals:
    void openRequested();

private:
    std::function<void(std::vector<std::string>)> pending_;
};
