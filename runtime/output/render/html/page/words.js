// The page's own words in the report's language.

let translations = {};

export function useWords(dictionary) {
  translations = dictionary;
}

/** The English text in the report's language, with ^1, ^2 filled. */
export function word(text, ...values) {
  const translated = Object.hasOwn(translations, text) ? translations[text] : text;
  return translated.replaceAll(/\^([1-9])/gu, (place, digit) => {
    const value = values[Number(digit) - 1];
    return value === undefined ? place : String(value);
  });
}

let count;
let percent;

export function useLanguage(language) {
  const known = Intl.NumberFormat.supportedLocalesOf([language]).length > 0 ? language : 'en';
  count = new Intl.NumberFormat(known, { maximumFractionDigits: 0 });
  percent = new Intl.NumberFormat(known, { style: 'percent', minimumFractionDigits: 1, maximumFractionDigits: 1 });
}

export function countText(number) {
  return count.format(number);
}

/** Of a share between 0 and 1. What is not nothing does not look like nothing. */
export function shareText(share) {
  const least = 0.0005;
  return share > 0 && share < least ? `< ${percent.format(0.001)}` : percent.format(share);
}
