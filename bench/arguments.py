"""Kinds of arguments of the command line."""

import argparse


def listed(allowed, kind=str):
    """A type for argparse: some of `allowed`, separated by commas."""

    def read(text: str):
        words = [kind(word) for word in text.split(",") if word]
        for word in words:
            if word not in allowed:
                raise argparse.ArgumentTypeError(f"{word} is none of {', '.join(map(str, allowed))}")
        return words

    return read
