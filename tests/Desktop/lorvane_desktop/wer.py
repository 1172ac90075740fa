"""The word error rate: how many words were changed, lost or invented, for each word spoken."""

import difflib
import re

_ONES = ("zero one two three four five six seven eight nine ten eleven twelve thirteen fourteen "
         "fifteen sixteen seventeen eighteen nineteen").split()
_TENS = "twenty thirty forty fifty sixty seventy eighty ninety".split()
# A name's or a noun's own "'s" stays: that isn't known to be short for anything.
_CONTRACTIONS = [(re.compile(short), full) for short, full in (
    (r"\bcan't\b|\bcannot\b", "can not"), (r"\bwon't\b", "will not"), (r"n't\b", " not"),
    (r"'re\b", " are"), (r"'ve\b", " have"), (r"'ll\b", " will"), (r"'d\b", " would"),
    (r"\bi'm\b", "i am"), (r"\blet's\b", "let us"),
    (r"\b(he|she|it|that|there|here|what|who|where|how)'s\b", r"\1 is"))]


def words(text):
    """The words as they sound: no case, no punctuation, small numbers, years and contractions
    written in full."""
    text = text.lower().replace("’", "'").replace("-", " ")
    for short, full in _CONTRACTIONS:
        text = short.sub(full, text)
    text = re.sub(r"\d+", lambda match: _spelt(int(match[0])), text)
    return re.findall(r"[a-z']+", text)


def _spelt(number):
    if number < 20:
        return _ONES[number]
    if number < 100:
        tens, ones = divmod(number, 10)
        return _TENS[tens - 2] + (f" {_ONES[ones]}" if ones else "")
    if 1100 < number < 2000 and number % 100 >= 10:
        return f"{_spelt(number // 100)} {_spelt(number % 100)}"
    return " ".join(_ONES[int(digit)] for digit in str(number))


def errors(spoken, heard):
    """The fewest changes, losses and inventions that lead from one list of words to the other."""
    row = list(range(len(heard) + 1))
    for i, word in enumerate(spoken, 1):
        previous, row[0] = row[0], i
        for j, other in enumerate(heard, 1):
            previous, row[j] = row[j], min(row[j] + 1, row[j - 1] + 1, previous + (word != other))
    return row[-1]


def runs(spoken, heard):
    """The runs of words that were lost, and of words that were invented."""
    steps = difflib.SequenceMatcher(None, spoken, heard, autojunk=False).get_opcodes()
    lost = [spoken[a:b] for step, a, b, _, _ in steps if step == "delete"]
    invented = [heard[a:b] for step, _, _, a, b in steps if step == "insert"]
    return lost, invented
