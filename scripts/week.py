#!/usr/bin/env python3
"""A full week's snapshot, as the app might write it now: for pictures. week.py [full|extreme|empty] > widget.json"""

import json
import math
import sys
import time
import uuid

REFERENCE = 978307200  # of the snapshot's dates, in seconds since 1970


def full(now):
    def event(hours, length, title, color, meeting=False, all_day=False):
        out = {"id": title, "title": title, "start": now + hours * 3600, "end": now + (hours + length) * 3600,
               "allDay": all_day, "colorHex": color}
        if meeting:
            out["meetingURL"] = "https://meet.example.com/" + title.split()[0].lower()
        return out

    def clip(text, pinned=False, image=None):
        out = {"id": str(uuid.uuid4()).upper(), "date": now, "pinned": pinned}
        out.update({"imagePath": image} if image else {"text": text})
        return out

    history = [0.28 + 0.14 * math.sin(i * 0.35) + 0.09 * math.sin(i * 1.3) for i in range(40)]
    return {
        "date": now,
        "battery": {"percent": 78, "charging": True, "pluggedIn": True, "health": 0.91, "cycles": 214,
                    "minutesRemaining": 48, "temperature": 31.4, "watts": 45.0, "limitEnabled": True, "limit": 80,
                    "chargingPaused": False, "adapterDisabled": False},
        "cpu": 0.34, "cpuHistory": history, "gpu": 0.21, "memory": 0.61, "memoryUsed": 9800000000,
        "memoryTotal": 16000000000, "chipTemperature": 54.0,
        "fans": [{"actual": 2380.0, "minimum": 1200.0, "maximum": 5800.0, "manual": False}],
        "fanMode": "automatic",
        "disk": {"name": "Sistema", "total": 994662584320, "available": 312400000000},
        "awakeActive": True, "awakeEnd": now + 44 * 60 + 12,
        "eqEnabled": True, "eqPreset": "Graves+", "eqOutput": "Fones da sala",
        "clips": [clip("Reunião às 15h com o time de produto", True),
                  clip("https://docs.example.com/guia-de-estilo"),
                  clip("Rua das Flores, 123, apto. 41"),
                  clip("Pão, café, leite, manteiga e frutas"),
                  clip("contato@example.com"),
                  clip("#40D9B3 para os botões, #FFA640 para avisos"),
                  clip("Voo AB 1234, embarque 18h40, portão 12")],
        "calendarAccess": True,
        "events": [event(-0.3, 1, "Revisão do projeto", "#4F8DF7", True),
                   event(1.5, 0.5, "Daily do time", "#40D9B3", True),
                   event(3, 1, "Almoço com a Marina", "#FFA640"),
                   event(22, 1, "Consulta no dentista", "#D999FF"),
                   event(26, 1.5, "Planejamento da semana", "#4F8DF7", True),
                   event(49, 24, "Aniversário do João", "#FF6166", all_day=True),
                   event(74, 1, "Aula de violão", "#40D9B3")],
        "clockZones": ["America/New_York", "Europe/Lisbon", "Asia/Tokyo"],
        "careDate": now - 3700,
        "careItems": [{"title": title, "level": level, "summary": ""} for title, level in (
            ("Memória", "ok"), ("Discos", "attention"), ("Bateria", "ok"), ("Segurança", "ok"),
            ("Atualizações", "info"), ("Inicialização", "ok"), ("Temperatura", "ok"), ("Rede", "ok"))],
    }


def extreme(now):
    snapshot = full(now)
    snapshot["battery"].update(percent=100, charging=False, health=1.25, cycles=123456, temperature=-12.5, watts=240.0)
    snapshot.update(gpu=1.0, memoryUsed=999949999999, chipTemperature=-8.0, awakeEnd=now + 584 * 3600, careDate=now - 60)
    snapshot["fans"][0].update(actual=123456.0)
    snapshot["disk"].update(name="Arquivos da família e do trabalho", available=512340000000)
    snapshot["eqPreset"] = "Uma predefinição com um nome que não cabe"
    snapshot["eqOutput"] = "Alto-falantes da Sala de Reunião do Terceiro Andar"
    titles = ["Levar a documentação ao cartório e à prefeitura", "会議の準備と資料の確認をする", "مراجعة المشروع الأسبوعية",
              "Incompreensibilissimamente" * 4, "👨‍👩‍👧‍👦 Família 🇧🇷🇵🇹", "हिन्दी बैठक", "การประชุมประจำสัปดาห์"]
    for event, title in zip(snapshot["events"], titles):
        event["title"] = title
    for clip, text in zip(snapshot["clips"], titles):
        clip["text"] = text + "\n" + text
    snapshot["clockZones"] = ["America/Argentina/Buenos_Aires", "Asia/Ho_Chi_Minh", "Asia/Kathmandu"]
    snapshot["careItems"] = [{"title": title, "level": "attention", "summary": ""} for title in titles * 3]
    return snapshot


def empty(now):
    snapshot = full(now)
    for key in ("battery", "gpu", "chipTemperature", "fanMode", "disk", "awakeEnd", "eqOutput", "careDate"):
        del snapshot[key]
    snapshot.update(cpuHistory=[], fans=[], awakeActive=False, eqEnabled=False, eqPreset="", clips=[], events=[],
                    clockZones=[], careItems=[])
    return snapshot


if __name__ == "__main__":
    kind = {"full": full, "extreme": extreme, "empty": empty}[sys.argv[1] if len(sys.argv) > 1 else "full"]
    json.dump(kind(time.time() - REFERENCE), sys.stdout, ensure_ascii=False)
