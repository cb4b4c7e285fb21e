"""The helper's contract in a few lines of another language: helper.py BUS-ADDRESS"""
import asyncio
import json
import sys

from dbus_next.aio import MessageBus
from dbus_next import DBusError
from dbus_next.service import ServiceInterface, method

NAME = "com.kavra.zelto.helper"


class Helper(ServiceInterface):
    def __init__(self):
        super().__init__(NAME)
        self.reset()

    def reset(self):
        self.charge = {"enabled": False, "limit": 80, "sailing": 5, "dischargeAboveLimit": False}
        self.fan = {"mode": "automatic", "sensor": "hottest", "startTemperature": 50, "maxTemperature": 80.0,
                    "fixedLevel": 0.5}

    @method()
    def statusWithReply(self) -> "ay":
        return json.dumps({
            "version": "9.9.9", "chargeConfig": self.charge, "chargeBackend": "adapterOnly",
            "chargingPaused": True, "adapterDisabled": False, "fanConfig": self.fan, "fans": [],
            "lastError": None, "unknown": [1, {}]}).encode()

    @method()
    def setChargeConfig(self, config: "ay") -> "s":
        self.charge = json.loads(config)
        if self.charge["limit"] == 99:
            raise DBusError("org.example.Odd", "not today")
        return ""

    @method()
    def setFanConfig(self, config: "ay") -> "s":
        self.fan = json.loads(config)
        return ""

    @method()
    def resetAllWithReply(self):
        self.reset()


async def main():
    bus = await MessageBus(bus_address=sys.argv[1]).connect()
    bus.export("/" + NAME.replace(".", "/"), Helper())
    await bus.request_name(NAME)
    print("ready", flush=True)
    await bus.wait_for_disconnect()


asyncio.run(main())
