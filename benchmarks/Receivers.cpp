#include "Receivers.h"

namespace Bench {

namespace {

class AddingListener : public ListeningReceiver
{
public:
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override;
};

void AddingListener::updatePropertyListener(Doc::Document*, bool, int value)
{
    sum += value;
}

} // namespace

std::unique_ptr<ListeningReceiver> ListeningReceiver::create()
{
    return std::make_unique<AddingListener>();
}

std::unique_ptr<PlainReceiver> PlainReceiver::create()
{
    return std::make_unique<PlainReceiver>();
}

void PlainReceiver::updateProperty(Doc::Document*, bool, int value)
{
    sum += value;
}

std::unique_ptr<QtReceiver> QtReceiver::create()
{
    return std::make_unique<QtReceiver>();
}

void QtReceiver::updateProperty(Doc::Document*, bool, int value)
{
    sum += value;
}

} // namespace Bench
