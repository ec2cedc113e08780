#include "Fuzz.h"

#include <support/ListenerModel.h>
#include <support/Session.h>

#include <QCoreApplication>

#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    static QCoreApplication application(*count, *arguments);
    return 0;
}

/// The input decides which listeners are added, removed and notified during notifications.
extern "C" int LLVMFuzzerTestOneInput(const uchar* data, std::size_t size)
{
    const Session session;
    FuzzedDataProvider choices(data, size);
    ListenerModel model(
        [&choices](unsigned end) { return choices.ConsumeIntegralInRange(0U, end - 1); });
    while (choices.remaining_bytes() > 0 && !model.problem())
        model.play();
    require(!model.problem(), model.problem());
    return 0;
}
