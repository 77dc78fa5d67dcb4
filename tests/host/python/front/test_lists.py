"""Python's manners of lists on published lists, against Python's own list."""

import collections.abc
import random

import pytest


@pytest.fixture
def things(demo):
    return [demo.Thing(text) for text in "abcdefgh"]


@pytest.fixture
def parts(demo, things):
    owner = demo.Thing("owner")
    owner.parts = things
    return owner.parts


def test_reading(parts, things):
    assert len(parts) == 8 and list(parts) == things and parts == things and things == parts
    assert parts[0] is things[0] and parts[-1] is things[-1]
    assert parts[2:5] == things[2:5] and parts[::-2] == things[::-2] and parts[50:] == []
    assert things[3] in parts and 5 not in parts and None not in parts
    assert parts.index(things[4]) == 4 and parts.index(things[4], 2, -1) == 4 and parts.count(things[1]) == 1
    assert list(reversed(parts)) == things[::-1] and sorted(parts, key=lambda t: t.name, reverse=True)[0] is things[-1]
    assert parts + [things[0]] == things + [things[0]] and parts != things[1:]
    assert "7 more" not in repr(parts) and repr(parts).startswith("<demo.SequenceOfThing [")
    with pytest.raises(TypeError):
        hash(parts)


@pytest.mark.parametrize("action, error", [
    (lambda s: s[8], IndexError), (lambda s: s[-9], IndexError), (lambda s: s["a"], TypeError),
    (lambda s: s.index(3), ValueError), (lambda s: s.remove(3), ValueError), (lambda s: s.pop(8), IndexError),
    (lambda s: s.append(3), TypeError), (lambda s: s.extend([s[0], 3]), TypeError),
    (lambda s: s.__setitem__(0, 3), TypeError), (lambda s: s.__setitem__(slice(0, 2), [s[0], 3]), TypeError),
    (lambda s: s.__setitem__(slice(0, 4, 2), [s[0]]), ValueError), (lambda s: s.__delitem__(8), IndexError),
])
def test_a_refused_change_changes_nothing(parts, things, action, error):
    with pytest.raises(error):
        action(parts)
    assert parts == things


def test_a_value_refused_in_the_middle_of_a_slice_restores_it(demo, parts, things):
    with pytest.raises(demo.Error, match="refuses"):
        parts[2:4] = [things[0], demo.Thing("poison"), things[1]]
    assert parts == things


def test_changes_follow_pythons_list(demo):
    """Random changes on a published list and on a plain one give the same results and the same contents."""
    chance = random.Random(7)
    pool = [demo.Thing(str(i)) for i in range(12)]
    owner, plain = demo.Thing("owner"), []
    published = owner.parts

    def some():
        return [chance.choice(pool) for _ in range(chance.randrange(4))]

    def assign(values, key, value):
        values[key] = value

    def delete(values, key):
        del values[key]

    for _ in range(600):
        size = len(plain)
        place, value, values = chance.randrange(-size - 1, size + 1), chance.choice(pool), some()
        low, high = sorted((chance.randrange(-size - 2, size + 3), chance.randrange(-size - 2, size + 3)))
        step = chance.choice([None, 1, 2, -1, -3])
        action = chance.choice([
            lambda s: s.append(value), lambda s: s.extend(values), lambda s: s.pop(), lambda s: s.pop(place),
            lambda s: s.remove(value), lambda s: s.reverse(), lambda s: assign(s, place, value),
            lambda s: s.sort(key=lambda t: int(t.name) % 3), lambda s: s.sort(key=lambda t: t.name, reverse=True),
            lambda s: assign(s, slice(low, high), values), lambda s: delete(s, place),
            lambda s: delete(s, slice(low, high, step)), lambda s: s.__iadd__(values), lambda s: s[low:high:step],
            lambda s: s.index(value), lambda s: s.count(value),
            lambda s: s.clear() if size > 25 else None,
        ])
        outcomes = []
        for target in (published, plain):
            try:
                result = action(target)
                outcomes.append("itself" if result is target else result)
            except (IndexError, ValueError) as error:
                outcomes.append(type(error))
        assert outcomes[0] == outcomes[1]
        assert published == plain


def test_assignment_of_any_iterable(demo, things):
    owner = demo.Thing("owner")
    for values in (things, tuple(things), (t for t in things), demo.Thing("x").parts, None):
        owner.parts = values
    assert owner.parts == []
    owner.parts += things
    owner.parts += owner.parts
    assert owner.parts == things + things
    other = demo.Thing("other")
    other.parts = owner.parts
    assert other.parts == owner.parts and other.parts is not owner.parts


def test_published_methods_count_from_one(demo, parts, things):
    parts.insert(1, things[7])
    assert parts[0] is things[7]
    parts.erase(1)
    parts.replace(8, things[0])
    assert parts[7] is things[0]
    with pytest.raises(demo.Error, match="must be positive"):
        parts.insert(0, things[0])


@pytest.mark.parametrize("size", [3, 100])
def test_a_list_that_changes_while_it_is_iterated_is_an_error(demo, size):
    owner = demo.Thing("owner")
    owner.parts = [demo.Thing(str(i)) for i in range(size)]
    seen = 0
    with pytest.raises(RuntimeError, match="iterate over list"):
        for thing in owner.parts:
            seen += 1
            owner.parts.remove(thing)
    # Elements are read ahead in blocks; the change shows when the next block is due.
    assert seen <= 32 and len(owner.parts) == size - seen
    for thing in list(owner.parts):
        owner.parts.remove(thing)
    assert not owner.parts


def test_a_change_of_the_same_size_is_noticed_too(demo):
    owner = demo.Thing("owner")
    owner.parts = [demo.Thing(str(i)) for i in range(100)]
    walk = iter(owner.parts)
    next(walk)
    owner.parts[50] = demo.Thing("new")
    with pytest.raises(RuntimeError, match="iterate over list"):
        list(walk)
    assert list(walk) == []


def test_long_lists_are_walked_in_blocks(host, demo, settled):
    owner = demo.Thing("owner")
    owner.parts = [demo.Thing(str(i)) for i in range(257)]
    assert [t.name for t in owner.parts] == [str(i) for i in range(257)]
    before = host.live_counts()
    walk = iter(owner.parts)
    next(walk)
    del walk  # elements that were read ahead go with the iterator
    assert host.live_counts() == before


def test_abstract_classes_and_patterns(demo, parts, things):
    fixed = demo.Thing("owner").asImmutable().parts
    for values in (parts, fixed):  # `insert` counts from 1
        assert isinstance(values, collections.abc.Sequence) and not isinstance(values, collections.abc.MutableSequence)
    assert not hasattr(fixed, "append") and not hasattr(fixed, "extend") and not hasattr(fixed, "sort")
    with pytest.raises(TypeError):
        fixed[0:0] = [things[0]]
    match parts:
        case [first, *_, last]:
            assert first is things[0] and last is things[-1]
        case _:
            pytest.fail("a published list is a sequence pattern")


def test_a_list_outlives_the_name_of_its_owner(demo):
    parts = demo.Thing("owner").parts
    parts.append(demo.Thing("a"))
    assert [t.name for t in parts] == ["a"]
