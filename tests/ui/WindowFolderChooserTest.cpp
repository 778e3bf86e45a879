// The model's folder chooser is the window's folder dialog.

#include "WindowFixture.h"

#include <QUrl>

TEST_F(WindowTest, AddingASearchFolderGoesThroughTheFolderDialog) {
    QObject* dialog = find("folderDialog");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->property("acceptLabel").toString(), "Add");
    EXPECT_EQ(dialog->property("title").toString(), "Choose folders or drives to search for large files");
    const QString folder = QString::fromStdString(home().makeDir("Projects/Media"));

    // Dismissed: nothing is added.
    model().addRoot();
    ASSERT_TRUE(UiHarness::waitFor([&] { return dialog->property("visible").toBool(); }));
    QMetaObject::invokeMethod(dialog, "reject");
    ASSERT_TRUE(UiHarness::waitFor([&] { return !dialog->property("visible").toBool(); }));
    EXPECT_TRUE(model().extraRoots().empty());

    // Each folder chosen opens the dialog again for the next; Done adds them all at
    // once, each once however often it was chosen.
    const QString other = QString::fromStdString(home().makeDir("Projects/Other"));
    model().addRoot();
    for (const QString& chosen : {folder, other, folder}) {
        ASSERT_TRUE(UiHarness::waitFor([&] { return dialog->property("visible").toBool(); }));
        dialog->setProperty("selectedFolder", QUrl::fromLocalFile(chosen));
        QMetaObject::invokeMethod(dialog, "accept");
        ASSERT_TRUE(UiHarness::waitFor([&] { return dialog->property("visible").toBool(); }));
        EXPECT_EQ(dialog->property("rejectLabel").toString(), "Done");
    }
    EXPECT_TRUE(model().extraRoots().empty()) << "nothing is added before Done";
    QMetaObject::invokeMethod(dialog, "reject");
    ASSERT_TRUE(UiHarness::waitFor([&] { return !dialog->property("visible").toBool(); }));
    EXPECT_EQ(model().extraRoots(), (AppModel::RootList{folder.toStdString(), other.toStdString()}));
}
