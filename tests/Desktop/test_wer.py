import unittest

from lorvane_desktop import wer


class ComparedWords(unittest.TestCase):
    """What was said and what was heard are the same words, however they are written."""

    def assert_same(self, one, other):
        self.assertEqual(wer.errors(wer.words(one), wer.words(other)), 0, (one, other))

    def test_contractions_are_the_words_in_full(self):
        # A prompt's script may have the one where its speaker says the other.
        self.assert_same("I'm sorry, that is not a valid extension.",
                         "I am sorry, that’s not a valid extension.")
        self.assert_same("You're first, we'll see. It cannot be, they've said.",
                         "You are first, we will see. It can't be, they have said.")
        self.assert_same("Don't. It won't, if he'd.", "Do not. It will not, if he would.")

    def test_what_is_no_contraction_stays(self):
        self.assertEqual(wer.words("the caller's 'name', its"),
                         ["the", "caller's", "'name'", "its"])

    def test_numbers_are_as_they_are_spoken(self):
        self.assert_same("In 1813, 7 of 42.", "in eighteen thirteen seven of forty-two")
        self.assert_same("Press 405.", "press four zero five")

    def test_each_change_counts_once(self):
        self.assertEqual(wer.errors(wer.words("press one to hear it again"),
                                    wer.words("press two to hear again now")), 3)
