'''dbusmock's logind, with a policy that can be told what to refuse.'''
# pylint: disable=wildcard-import,unused-wildcard-import

import dbus
from dbusmock import MOCK_IFACE
from dbusmock.templates import logind
from dbusmock.templates.logind import *

refused = set()


@dbus.service.method(MAIN_IFACE, in_signature='ssss', out_signature='h')
def Inhibit(mock, what, who, why, mode):
    if refused.intersection(what.split(':')):
        raise dbus.exceptions.DBusException('Permission denied',
                                            name='org.freedesktop.DBus.Error.AccessDenied')
    return logind.Inhibit(mock, what, who, why, mode)


@dbus.service.method(MOCK_IFACE, in_signature='s', out_signature='')
def Refuse(_, whats):
    refused.clear()
    refused.update(whats.split(':'))
