"""A library as somebody has it who dictates every day, for pictures and tests."""

import json
import uuid

HISTORY = (
    ("2026-03-16T08:41:10Z", 12.5, "Good morning, everyone. The figures for the quarter are in, "
     "and they look better than we had hoped. I will send the whole table round before lunch."),
    ("2026-03-15T17:02:44Z", 6.2, "Could you book the small room for Thursday at ten?"),
    ("2026-03-15T11:30:00Z", 31.0, "Notes from the walk: the old mill is for sale. It would need a "
     "new roof, and the stream behind it floods in spring, but the light in the upper room is "
     "wonderful, and there is space for a workshop on the ground floor. Ask about the right of "
     "way across the meadow, and whether the wheel still turns."),
    ("2026-03-14T09:26:53Z", 4.25, "Send the report today."),
    ("2026-03-13T20:15:31Z", 3.1, "Milk, eggs, two lemons."),
)
VOCABULARY = (
    ("kube ctl", "kubectl", ["cube control", "cube cuddle"]),
    ("shiv on", "Siobhán", ["she vawn"]),
    ("post gress", "PostgreSQL", []),
)
SNIPPETS = (
    ("my signature", "Kind regards,\nAda Miller\nFacilities and Events"),
    ("office address", "14 Harbour Street, third floor"),
)
SCRATCHPAD = ("An opening for the talk\n\nNobody ever asked a pencil to listen. Begin with the "
              "pencil, then come to the microphone.\n\nThings to check: the room, the lamp, the "
              "clock.")


def _id(text):
    return str(uuid.uuid5(uuid.NAMESPACE_URL, text)).upper()


def write(folder, history=HISTORY, vocabulary=VOCABULARY, snippets=SNIPPETS,
          scratchpad=SCRATCHPAD):
    """Writes the library file into Lorvane's folder, which it makes."""
    folder.mkdir(mode=0o700, parents=True, exist_ok=True)
    (folder / "library.json").write_text(json.dumps({
        "schemaVersion": 2,
        "history": [{"id": _id(text), "createdAt": date, "duration": seconds, "text": text}
                    for date, seconds, text in history],
        "vocabulary": [{"id": _id(phrase), "phrase": phrase, "replacement": replacement,
                        "aliases": aliases} for phrase, replacement, aliases in vocabulary],
        "snippets": [{"id": _id(trigger), "trigger": trigger, "content": content}
                     for trigger, content in snippets],
        "scratchpad": scratchpad,
        "settings": {"languageIdentifier": "en-US", "autoPaste": False, "removeFillers": True,
                     "smartPunctuation": True},
    }, ensure_ascii=False))
