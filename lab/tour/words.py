"""What the tool says: its string tables, as a screen reader tells them."""

import xml.etree.ElementTree
from pathlib import Path

FOLDER = Path(__file__).resolve().parents[2] / "app" / "Resources" / "strings"
LANGUAGES = sorted(path.stem.removeprefix("vantro_") for path in FOLDER.glob("vantro_*.ts"))


class Words:
    """The tables of one language."""

    def __init__(self, language):
        tables = xml.etree.ElementTree.parse(FOLDER / f"vantro_{language}.ts").getroot().iter("context")
        self._texts = {(table.findtext("name"), message.findtext("source")): message.find("translation")
                       for table in tables for message in table.iter("message")}

    def text(self, table, key, count=None):
        """A text without the mark of the letter that presses it; one that counts things, for `count` of them."""
        text = self._texts[table, key]
        if count is None:
            return text.text.replace("&", "", 1)
        forms = [form.text for form in text.iter("numerusform")]
        # Of the languages that are there, all have one form, or another for one thing only.
        return forms[0 if count == 1 else -1].replace("%n", str(count))
