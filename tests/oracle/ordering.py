"""The order in which the items are reported. Names compare by bytes."""

from dictionary import same_name

RANKS_ASCENDING = {1: 1, 2: 2, 3: 3, 0: 4}
RANKS_DESCENDING = {1: -1, 2: -2, 3: -3, 0: 0}


def name_bytes(item):
    return item.name.encode()


def by_name(items, ascending):
    if ascending:
        return sorted(items, key=lambda item: (name_bytes(item), item.index))
    return sorted(items, key=name_bytes, reverse=True)


def sort_text(item, attribute, dataset):
    """The text by which the item is ordered, None when it does not have the attribute."""
    if item.is_set():
        return None
    for name, values in dataset.variables[item.index].attributes:
        if same_name(name, attribute) and not name.startswith(("@", "$@")):
            return values[0] if values else ""
    return None


def falling(data):
    """A key that puts the larger of two byte strings first: bytes turned round, and an end larger than any byte."""
    return [255 - byte for byte in data] + [256]


def order_items(settings, dataset):
    items, ascending = list(settings.items), settings.ascending
    if settings.order == "FILE":
        return sorted(items, key=lambda item: item.index, reverse=not ascending)
    if settings.order == "ALPHA":
        return by_name(items, ascending)
    if settings.order == "VARLIST":
        return items if ascending else items[::-1]
    if settings.order == "MEASURE":
        ranks = RANKS_ASCENDING if ascending else RANKS_DESCENDING
        return sorted(items, key=lambda item: (
            ranks[1 if item.is_set() else dataset.variables[item.index].level], name_bytes(item)))

    texts = {id(item): sort_text(item, settings.order_attribute, dataset) for item in items}
    plain = by_name([item for item in items if texts[id(item)] is None], ascending)
    valued = [item for item in items if texts[id(item)] is not None]

    def text_bytes(item):
        return texts[id(item)].encode()

    # An empty text first and the larger text first, or the other way round on both counts.
    if ascending:
        valued.sort(key=lambda item: (text_bytes(item) != b"", falling(text_bytes(item)), name_bytes(item)))
        return plain + valued
    valued.sort(key=lambda item: (text_bytes(item) == b"", text_bytes(item), falling(name_bytes(item))))
    return valued + plain
