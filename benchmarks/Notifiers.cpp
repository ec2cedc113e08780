#include "Notifiers.h"

#include "Receivers.h"

namespace Bench {

namespace {

auto callTo(PlainReceiver* receiver)
{
    return [receiver](Doc::Document* document, bool flag, int value) {
        receiver->updateProperty(document, flag, value);
    };
}

} // namespace

void BareLoop::connect(App::PropertyListener* listener)
{
    _listeners.push_back(listener);
}

void BareLoop::notify(Doc::Document* document, bool flag, int value)
{
    for (App::PropertyListener* const listener : _listeners)
        listener->updatePropertyListener(document, flag, value);
}

void QtNotifier::connect(QtReceiver* receiver)
{
    QObject::connect(this, &QtNotifier::propertyUpdated, receiver, &QtReceiver::updateProperty,
                     Qt::DirectConnection);
}

void QtNotifier::notify(Doc::Document* document, bool flag, int value)
{
    Q_EMIT propertyUpdated(document, flag, value);
}

void BoostNotifier::connect(PlainReceiver* receiver)
{
    _signal.connect(callTo(receiver));
}

void BoostNotifier::notify(Doc::Document* document, bool flag, int value)
{
    _signal(document, flag, value);
}

void SigcNotifier::connect(PlainReceiver* receiver)
{
    _signal.connect(callTo(receiver));
}

void SigcNotifier::notify(Doc::Document* document, bool flag, int value)
{
    _signal.emit(document, flag, value);
}

} // namespace Bench
