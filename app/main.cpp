#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Veltro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELTRO_VERSION));
    QTextStream(stdout) << "Veltro " << QCoreApplication::applicationVersion() << '\n';
    return 0;
}
