'''A connected modem for the MMS daemon, on the test's private system bus

One modem in state connected, with Modem.Messaging and Modem.Modem3gpp, a SIM with an IMSI and a
connected bearer on the loopback interface whose APN is the one the daemon is configured with.
Parameters: "imsi" and "apn".
'''

import dbus

from dbusmock import mockobject

BUS_NAME = 'org.freedesktop.ModemManager1'
MAIN_OBJ = '/org/freedesktop/ModemManager1'
MAIN_IFACE = 'org.freedesktop.ModemManager1'
SYSTEM_BUS = True
IS_OBJECT_MANAGER = True

MODEM_IFACE = 'org.freedesktop.ModemManager1.Modem'
MESSAGING_IFACE = 'org.freedesktop.ModemManager1.Modem.Messaging'
GPP_IFACE = 'org.freedesktop.ModemManager1.Modem.Modem3gpp'
SIM_IFACE = 'org.freedesktop.ModemManager1.Sim'
BEARER_IFACE = 'org.freedesktop.ModemManager1.Bearer'

MODEM = MAIN_OBJ + '/Modem/0'
SIM = MAIN_OBJ + '/SIM/0'
BEARER = MAIN_OBJ + '/Bearer/0'

STATE_CONNECTED = 11


def load(mock, parameters):
    imsi = parameters.get('imsi', '310260000000001')
    apn = parameters.get('apn', 'mms.test')
    mock.AddMethods(MAIN_IFACE, [('ScanDevices', '', '', ''), ('SetLogging', 's', '', '')])
    mock.AddProperty(MAIN_IFACE, 'Version', '1.20.4')

    mock.AddObject(SIM, SIM_IFACE, {
        'Active': True,
        'SimIdentifier': '8901000000000000000',
        'Imsi': imsi,
        'OperatorIdentifier': imsi[:5],
        'OperatorName': 'Loopback',
        'EmergencyNumbers': dbus.Array([], signature='s'),
    }, [])

    mock.AddObject(BEARER, BEARER_IFACE, {
        'Interface': 'lo',
        'Connected': True,
        'Suspended': False,
        'Ip4Config': dbus.Dictionary({'method': dbus.UInt32(2), 'address': '127.0.0.1',
                                      'prefix': dbus.UInt32(8), 'dns1': '127.0.0.1'}, signature='sv'),
        'Ip6Config': dbus.Dictionary({'method': dbus.UInt32(0)}, signature='sv'),
        'IpTimeout': dbus.UInt32(20),
        'BearerType': dbus.UInt32(1),
        'Properties': dbus.Dictionary({'apn': apn, 'ip-type': dbus.UInt32(1)}, signature='sv'),
    }, [('Connect', '', '', ''), ('Disconnect', '', '', '')])

    mock.AddObject(MODEM, MODEM_IFACE, {
        'Sim': dbus.ObjectPath(SIM),
        'Bearers': dbus.Array([dbus.ObjectPath(BEARER)], signature='o'),
        'State': dbus.Int32(STATE_CONNECTED),
        'StateFailedReason': dbus.UInt32(0),
        'PowerState': dbus.UInt32(3),
        'Manufacturer': 'Loopback',
        'Model': 'Test modem',
        'Revision': '1',
        'DeviceIdentifier': 'loopback0',
        'Device': '/sys/devices/loopback0',
        'Drivers': dbus.Array(['test'], signature='s'),
        'Plugin': 'test',
        'PrimaryPort': 'lo',
        'EquipmentIdentifier': '350000000000000',
        'UnlockRequired': dbus.UInt32(1),
        'OwnNumbers': dbus.Array(['+15550001111'], signature='s'),
        'AccessTechnologies': dbus.UInt32(1 << 14),
        'SignalQuality': dbus.Struct((dbus.UInt32(80), True), signature='ub'),
        'CurrentCapabilities': dbus.UInt32(4),
        'MaxBearers': dbus.UInt32(1),
        'MaxActiveBearers': dbus.UInt32(1),
    }, [('ListBearers', '', 'ao', 'ret = [dbus.ObjectPath("%s")]' % BEARER),
        ('Enable', 'b', '', ''),
        ('CreateBearer', 'a{sv}', 'o', 'ret = dbus.ObjectPath("%s")' % BEARER),
        ('DeleteBearer', 'o', '', '')])
    modem = mockobject.objects[MODEM]
    modem.AddProperties(MESSAGING_IFACE, {
        'Messages': dbus.Array([], signature='o'),
        'SupportedStorages': dbus.Array([dbus.UInt32(2)], signature='u'),
        'DefaultStorage': dbus.UInt32(2),
    })
    modem.AddMethods(MESSAGING_IFACE, [('List', '', 'ao', 'ret = dbus.Array([], signature="o")'),
                                       ('Delete', 'o', '', ''),
                                       ('Create', 'a{sv}', 'o', 'ret = dbus.ObjectPath("/")')])
    modem.AddProperties(GPP_IFACE, {
        'Imei': '350000000000000',
        'RegistrationState': dbus.UInt32(1),
        'OperatorCode': imsi[:5],
        'OperatorName': 'Loopback',
        'EnabledFacilityLocks': dbus.UInt32(0),
    })
    modem.AddMethods(GPP_IFACE, [('Register', 's', '', ''), ('Scan', '', 'aa{sv}', 'ret = []')])
