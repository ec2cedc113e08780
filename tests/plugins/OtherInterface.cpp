#include <QObject>

/// A sound Qt plug-in of some other program.
class OtherInterface : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.OtherInterface/1.0")
};

#include "OtherInterface.moc"
