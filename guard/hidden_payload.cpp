#include "guard/hidden_payload.h"

namespace guard {
namespace {

bool is_tag_space(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\f' || byte == '\n';
}

}  // namespace

char PayloadHider::hide(char byte) {
    switch (m_state) {
        case State::kText:
            return hide_in_text(byte);
        case State::kReference:
            return hide_in_reference(byte);
        case State::kTag:
            return hide_in_tag(byte);
        case State::kName:
            return hide_in_name(byte);
        case State::kClasses:
            return hide_in_classes(byte);
        default:
            return hide_up_to_bracket(byte);
    }
}

char PayloadHider::hide_in_text(char byte) {
    if (byte == '<') {
        m_state = State::kTag;
        return byte;
    }
    if (byte == '&') {
        m_state = State::kReference;
        m_before_reference = m_text;
    }
    return m_text.hide(byte);
}

char PayloadHider::hide_in_reference(char byte) {
    if (is_letter_or_digit(byte)) {
        return m_text.hide(byte);
    }
    if (byte != '<' && byte != '&' && (byte != ';' || m_text.ends_in_reference())) {
        const bool is_ampersand = byte == ';' && m_text.ends_in_ampersand();
        // The "&" and what is behind it do not come to the record: a reference stands for
        // something else, and what is none is dropped.
        m_text = m_before_reference;
        m_state = State::kText;
        if (byte == ';') {
            m_text.hide(is_ampersand ? '&' : ';');
            return byte;
        }
    }
    m_state = State::kText;
    return hide_in_text(byte);
}

char PayloadHider::hide_in_tag(char byte) {
    if (is_tag_space(byte)) {
        m_state = State::kAnnotation;
    } else if (byte == '.') {
        m_state = State::kClasses;
    } else if (byte == '/') {
        m_state = State::kEndTag;
        m_name = TagNameHider();
    } else if (byte >= '0' && byte <= '9') {
        m_state = State::kStamp;
        m_stamp = TimeHider();
        return m_stamp.hide(byte);
    } else if (byte == '>') {
        m_state = State::kText;
    } else {
        m_state = State::kName;
        m_name = TagNameHider();
        return hide_in_name(byte);
    }
    return byte;
}

char PayloadHider::hide_in_name(char byte) {
    if (is_tag_space(byte)) {
        m_state = State::kAnnotation;
    } else if (byte == '.') {
        m_state = State::kClasses;
    } else if (byte == '>') {
        m_state = State::kText;
    } else {
        return m_name.hide(byte);
    }
    return byte;
}

char PayloadHider::hide_in_classes(char byte) {
    if (byte == '>' || byte == '\n') {
        m_state = State::kText;
    } else if (is_tag_space(byte)) {
        m_state = State::kAnnotation;
    }
    return hidden_byte(byte);
}

char PayloadHider::hide_up_to_bracket(char byte) {
    if (byte == '>') {
        m_state = State::kText;
        return byte;
    }
    return m_state == State::kEndTag  ? m_name.hide(byte)
           : m_state == State::kStamp ? m_stamp.hide(byte)
                                      : hidden_byte(byte);
}

}  // namespace guard
