"""Requests to the privileged service, in the words of busctl."""

import cbor2

BUS_NAME = "com.vantro.Standalone1"
REQUEST = ("busctl", "--system", "call", BUS_NAME, "/com/vantro/Standalone1", BUS_NAME)

REQUIRED, OPTIONAL = 0, 3


def _about_entry(method, name, control_flag):
    archive = cbor2.dumps({"$class": "PamSetting", "controlFlag": control_flag, "fileName": name, "moduleInterface": 1,
                           "moduleName": "pam_vantro_standalone.so"})
    return method, "ay", str(len(archive)), *map(str, archive)


def saving(name, control_flag):
    """Asks for an entry in a PAM service."""
    return _about_entry("SavePamSetting", name, control_flag)


def removing(name):
    """Asks that a PAM service has no entry."""
    return _about_entry("RemovePamSetting", name, OPTIONAL)
